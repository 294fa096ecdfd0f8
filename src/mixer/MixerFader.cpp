#include "mixer/MixerFader.h"

#include "basic/RuntimeError.h"

MixerFader::MixerFader(QWidget *parent, const QString &name, int index, Qt::Orientation orientation, int min,
                       int max, int smallChange, int largeChange)
    : QSlider(orientation, parent)
    , m_index(index)
{
    setObjectName(name);
    setRange(min, max);
    setSingleStep(smallChange);
    setPageStep(largeChange);
    if (orientation == Qt::Vertical) {
        setInvertedAppearance(true);
        setInvertedControls(true);
    }
    setFocusPolicy(Qt::WheelFocus);
    connect(this, &QAbstractSlider::valueChanged, this, [this] {
        if (!m_setting)
            emit Change();
    });
}

void MixerFader::setValue(int value)
{
    if (value < minimum() || value > maximum())
        basic::raise(basic::InvalidPropertyValue);
    m_setting = true;
    QSlider::setValue(value);
    m_setting = false;
}
