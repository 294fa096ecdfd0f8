#pragma once

#include <QSlider>

// A fader of the mixer chain. Change is raised for the user's moves only
// (drag, click on the track, wheel, keys); a position the program sets
// raises nothing, and one outside the range is error 380, as the classic
// slider control had it. Standing faders have 0 at the top.
class MixerFader : public QSlider {
    Q_OBJECT
public:
    MixerFader(QWidget *parent, const QString &name, int index, Qt::Orientation orientation, int min, int max,
               int smallChange, int largeChange);

    int Index() const { return m_index; }
    int Value() const { return value(); }
    void setValue(int value);

signals:
    void Change();

private:
    int m_index;
    bool m_setting = false;
};
