#pragma once

#include <QLabel>

// A label that takes the mouse: Click on a press and release over it, and
// the mouse events in twips with the button and shift state codes the forms
// use (1 left, 2 right, 4 middle; shift 1, ctrl 2, alt 4). A transparent
// label still takes the mouse, so a click on it never reaches the form below.
class ClickLabel : public QLabel {
    Q_OBJECT
public:
    explicit ClickLabel(QWidget *parent = nullptr, const QString &name = QString());

    static int buttonCode(Qt::MouseButtons buttons);
    static int shiftCode(Qt::KeyboardModifiers modifiers);

signals:
    void Click();
    void MouseDown(int button, int shift, double x, double y);
    void MouseMove(int button, int shift, double x, double y);
    void MouseUp(int button, int shift, double x, double y);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool m_pressed = false;
};
