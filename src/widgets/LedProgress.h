#pragma once

#include "basic/Checked.h"
#include "widgets/PropertyBag.h"

#include <QFont>
#include <QImage>
#include <QWidget>

#include <cstdint>
#include <optional>

// A level bar of lit segments in three zones, green, yellow and red, each
// with a lighter stripe, cut every ten pixels, in a rounded outline. It fills
// from the left (Orientation 0) or from the bottom (any other value). The
// picture is drawn into a retained surface on every change and only copied
// to the screen when Qt paints.
class LedProgress : public QWidget {
    Q_OBJECT
public:
    explicit LedProgress(QWidget *parent = nullptr);

    basic::Integer ZoneYellow() const { return m_zoneYellow; }
    void setZoneYellow(basic::Integer percent);
    basic::Integer ZoneRed() const { return m_zoneRed; }
    void setZoneRed(basic::Integer percent);
    std::int32_t Orientation() const { return m_orientation; }
    // Swaps width and height on every write, the same value included.
    void setOrientation(std::int32_t orientation);
    bool ShowText() const { return m_showText; }
    void setShowText(bool show);
    basic::Integer Value() const { return m_value; }
    // Not clamped. A value so large that Value * width leaves 32 bits is
    // run-time error 6, raised here.
    void setValue(basic::Integer percent);

    void ReadProperties(const PropertyBag &bag);
    void WriteProperties(PropertyBag &bag) const;

    // The picture as last drawn, pixel for pixel.
    const QImage &surface() const { return m_surface; }
    // Whether the turned font of orientation 1 exists.
    bool hasRotatedFont() const { return m_rotatedFont.has_value(); }
    // How many times the picture was drawn: a host ticking an unchanged value
    // costs no drawing.
    int drawings() const { return m_drawings; }

signals:
    void PropertyChanged(const QString &key); // a let ran; the host marks its settings dirty

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void draw();
    void horizontalBar(class QPainter &p, int w, int h);
    void verticalBar(QPainter &p, int w, int h);
    void makeRotatedFont();

    basic::Integer m_zoneYellow = 70;
    basic::Integer m_zoneRed = 90;
    std::int32_t m_orientation = 0;
    bool m_showText = false;
    basic::Integer m_value = 0;
    std::optional<QFont> m_rotatedFont;
    QImage m_surface;
    int m_drawings = 0;
};
