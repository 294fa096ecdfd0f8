#pragma once

#include "basic/Checked.h"
#include "platform/Form.h"
#include "shell/DrawingSurface.h"

#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <random>

class ClickLabel;
class Timer;

// "About": white snow falling on a black window, piling up on the red title
// and on red lines drawn with the mouse. A flake knows an obstacle only by
// reading the pixel under it, so the window draws on a retained surface
// that it reads back pixel by pixel, and paints that surface to the screen.
class frmMain : public Form {
    Q_OBJECT
public:
    explicit frmMain(Platform &platform);

    void Load() override;
    void DrawSnow();
    void newParticle(basic::Integer &i);

    // One pass of the frame loop: every flake drawn, then every flake moved.
    void frame();
    void flakeStep(int i);

    bool Running = false;
    float PenX = 0;
    float PenY = 0;
    bool Drawing = false;

    Timer *Timer1;
    ClickLabel *Label1;
    ClickLabel *Label2;
    ClickLabel *Label3;

    DrawingSurface &surface() { return m_surface; }
    bool isLoaded() const { return m_loaded; }
    std::int64_t frameCount() const { return m_frames; }

    // The machines this was drawn for managed a few hundred frames a
    // second; unpaced, today's would blur the snow and spend a whole core.
    static constexpr int FramesPerSecond = 500;

    // Rnd: a number in [0, 1). Tests hand in a generator of their own.
    float Rnd() { return m_rnd(); }
    void setRnd(std::function<float()> rnd) { m_rnd = std::move(rnd); }
    // What runs between two frames. By default pending events run, then
    // the loop waits for the next frame's moment with the event loop open.
    void setBetweenFrames(std::function<void()> yield) { m_betweenFrames = std::move(yield); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void Timer1_Timer();
    void Label3_Click();
    void Form_MouseDown(int button, int shift, float x, float y);
    void Form_MouseMove(int button, int shift, float x, float y);
    void Form_MouseUp(int button, int shift, float x, float y);
    void Randomize();
    void pace();
    void repaintChanged();

    DrawingSurface m_surface;
    bool m_loaded = false;
    std::int64_t m_frames = 0;
    std::mt19937 m_generator;
    std::function<float()> m_rnd;
    std::function<void()> m_betweenFrames;
    std::chrono::steady_clock::time_point m_nextFrame;
    QTimer m_wake;    // ends a wait between frames
    QTimer m_repaint; // the display's rate
};
