#include "mixer/PlayerFader.h"

#include <algorithm>

PlayerFader::PlayerFader(QWidget *parent, const QString &name)
    : QSlider(Qt::Horizontal, parent)
{
    setObjectName(name);
    setRange(0, 100);
    setSingleStep(1);
    setPageStep(10);
    QSlider::setValue(80);
    setToolTip(QStringLiteral("Volume"));
    setCursor(Qt::PointingHandCursor);
    // The groove is the skin's; only the knob is drawn here.
    setAttribute(Qt::WA_TranslucentBackground);
    setStyleSheet(QStringLiteral("QSlider { background: transparent; }"
                                 "QSlider::groove:horizontal { background: transparent; height: 8px; }"
                                 "QSlider::sub-page:horizontal { background: #007a7a; border-radius: 3px;"
                                 " margin: 1px 0; }"
                                 "QSlider::handle:horizontal { background: #00c0c0; border: 1px solid #1c1c1c;"
                                 " width: 7px; margin: -5px 0; border-radius: 3px; }"));
    connect(this, &QAbstractSlider::valueChanged, this, [this] {
        if (!m_setting)
            emit Change();
    });
}

void PlayerFader::setValue(int value)
{
    m_setting = true;
    QSlider::setValue(std::clamp(value, minimum(), maximum()));
    m_setting = false;
}
