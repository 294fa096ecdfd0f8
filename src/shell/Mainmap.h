#pragma once

#include "platform/Form.h"

#include <QPixmap>

class ClickLabel;
class GlowButton;

// The chooser between the four language panels: a window in the shape of
// South India, six invisible click areas over its regions, two buttons.
class Mainmap : public Form {
    Q_OBJECT
public:
    explicit Mainmap(Platform &platform);

    void Load() override;
    bool CheckInternetConnection();
    void ApplyMapRegion();

    bool Dragging = false;
    qint16 DragX = 0;
    qint16 DragY = 0;

    // Click areas, topmost first where they overlap.
    ClickLabel *kal;
    ClickLabel *Tn3;
    ClickLabel *Tn2;
    ClickLabel *Tn1;
    ClickLabel *Andrha;
    ClickLabel *Kll;
    GlowButton *GlowButton1;
    GlowButton *GlowButton2;

    void Tn1_Click();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void chooseRegion(const QString &panel);
    void Form_Click();
    void Form_MouseDown(double x, double y);
    void Form_MouseMove(double x, double y);
    void Form_MouseUp();

    QPixmap m_picture;
    bool m_pressed = false;
};
