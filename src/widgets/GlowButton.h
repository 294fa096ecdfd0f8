#pragma once

#include <QColor>
#include <QWidget>

// A push button with a caption and an integer look: 0 plain, 1 lit. The
// widget never changes its own look; the form's hover handlers do, through
// MouseMove and MouseLeave.
class GlowButton : public QWidget {
    Q_OBJECT
public:
    explicit GlowButton(QWidget *parent = nullptr, const QString &name = QString());

    QString Caption() const { return m_caption; }
    void setCaption(const QString &caption);
    bool Enabled() const { return isEnabled(); }
    int Appearance() const { return m_appearance; }
    void setAppearance(int appearance);

    QColor BackColor() const { return m_back; }
    void setBackColor(const QColor &c);
    QColor ForeColor() const { return m_fore; }
    void setForeColor(const QColor &c);

    // The property bag of the control as a form stores it. Colours are OLE
    // colours (0x00BBGGRR); bcol and fcol give the plain look, enab the
    // enabled state. The others are kept for what reads them back.
    struct Look {
        int btype = 0;
        int coltype = 0;
        quint32 bcol = 0x404040;
        quint32 fcol = 0xFFFFFF;
        quint32 fcolo = 0;
        quint32 embossm = 0xC0C0C0;
        quint32 embosss = 0xFFFFFF;
        bool showf = true;
        bool enab = true;
        int style = 0;
        int orient = 0;
        int align = 1;
        int bstyle = 0;
    };
    const Look &StoredLook() const { return m_look; }
    void setStoredLook(const Look &look);

signals:
    void Click();
    void MouseMove(int button, int shift, double x, double y);
    void MouseLeave();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QString m_caption;
    int m_appearance = 0;
    bool m_pressed = false;
    QColor m_back{0x40, 0x40, 0x40};
    QColor m_fore{0xFF, 0xFF, 0xFF};
    Look m_look;
};
