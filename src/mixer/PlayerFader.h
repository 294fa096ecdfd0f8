#pragma once

#include <QSlider>

#include <cstdint>

// The player's own volume fader, 0 to 100, lying over the groove the skin
// paints. A value outside the scale is held at its end (the panel's Load
// writes 2000). Change is raised for the user's moves only.
class PlayerFader : public QSlider {
    Q_OBJECT
public:
    PlayerFader(QWidget *parent, const QString &name);

    int Value() const { return value(); }
    void setValue(int value);
    std::uint32_t BackColor() const { return m_backColor; }
    std::uint32_t ForeColor() const { return m_foreColor; }

signals:
    void Change();

private:
    bool m_setting = false;
    std::uint32_t m_backColor = 0x404040;
    std::uint32_t m_foreColor = 0;
};
