#pragma once

#include "widgets/PropertyBag.h"

#include <QFont>
#include <QString>
#include <QWidget>

#include <cstdint>

class Dialogs;
class Process;
class QLabel;
class QPainter;

// The program's slider: a track (picBackGround) with a fill (lblSlider) that
// grows from the left when lying (style 0) or from the bottom when standing
// (style 1). Values are 32-bit floats in any range, kept to RoundValue
// decimals. All geometry is reasoned about in twips, 15 to a pixel, and only
// turned into pixels when the fill is placed.
class zzSlider : public QWidget {
    Q_OBJECT
public:
    // Errors the widget cannot hand back to a caller (those of its own mouse and
    // key handlers) end the program through dialogs and process, like any
    // uncaught run-time error.
    zzSlider(Dialogs &dialogs, Process &process, QWidget *parent = nullptr);

    std::uint32_t BackColor() const { return m_backColor; }
    void setBackColor(std::uint32_t color);
    std::uint32_t ForeColor() const { return m_foreColor; }
    void setForeColor(std::uint32_t color);
    bool Enabled() const;
    void setEnabled(bool enabled); // hides QWidget's own so the host hears of it
    QFont Font() const;
    void setFont(const QFont &font);
    std::int16_t BorderStyle() const { return m_borderStyle; }
    void setBorderStyle(std::int16_t style);
    void Refresh();
    WId hwnd() const { return winId(); }
    std::int16_t MousePointer() const { return m_mousePointer; }
    void setMousePointer(std::int16_t pointer);
    std::uint32_t SliderColor() const { return m_sliderColor; }
    void setSliderColor(std::uint32_t color);
    float MaxValue() const { return m_maxValue; }
    void setMaxValue(float value);
    float MinValue() const { return m_minValue; }
    void setMinValue(float value);
    float Value() const { return m_value; }
    void setValue(float value);
    std::int32_t SliderStyle() const { return m_sliderStyle; }
    void setSliderStyle(std::int32_t style); // raises 382 in user mode
    float SmallChange() const { return m_smallChange; }
    void setSmallChange(float change);
    float LargeChange() const { return m_largeChange; }
    void setLargeChange(float change);
    std::int16_t RoundValue() const { return m_roundValue; }
    void setRoundValue(std::int16_t decimals);
    QString ToolTipText() const { return m_toolTipText; }
    void setToolTipText(const QString &text);

    // True while the program runs; false in a form designer, the only place
    // where the style may change.
    bool userMode() const { return m_userMode; }
    void setUserMode(bool userMode) { m_userMode = userMode; }

    void ReadProperties(const PropertyBag &bag);
    void WriteProperties(PropertyBag &bag) const;

    // Every press and move of the mouse on the control, the track or the
    // fill, in twips on the track; button 1 is the left one, 2 the right.
    void TrackMouse(int button, double xTwips, double yTwips);

    // The fill as laid out on the track, in twips, before rounding to pixels.
    double fillLeft() const { return m_fillLeft; }
    double fillTop() const { return m_fillTop; }
    double fillWidth() const { return m_fillWidth; }
    double fillHeight() const { return m_fillHeight; }

signals:
    void Change();
    void Click();
    void SliderScroll();
    void PropertyChanged(const QString &key); // a let ran; the host marks its settings dirty

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    double trackWidth() const;
    double trackHeight() const;
    void placeFill();
    void applySliderStyle();
    void applyFill();
    void applyForeColor();
    void applySliderColor();
    void paintTrack(QPainter &painter);
    void mouseOn(QWidget *part, QMouseEvent *event);
    template <class Body>
    void atEventEdge(Body &&body);
    void showCaught(int number, const QString &description);
    QFont ambientFont() const;

    Dialogs &m_dialogs;
    Process &m_process;
    QWidget *m_track = nullptr;
    QLabel *m_fill = nullptr;
    QWidget *m_pressedOn = nullptr; // the part a left press started on, for Click

    std::uint32_t m_backColor = 0xFFFFFF;
    std::uint32_t m_foreColor = 0x80000012;
    std::uint32_t m_sliderColor = 0xFFC0C0; // the fill's colour as first drawn
    std::int16_t m_borderStyle = 1;
    std::int16_t m_mousePointer = 0;
    float m_maxValue = 0;
    float m_minValue = 0;
    float m_value = 0;
    std::int32_t m_sliderStyle = 0;
    float m_smallChange = 1;
    float m_largeChange = 1;
    std::int16_t m_roundValue = 0;
    QString m_toolTipText;

    bool m_hasFocus = false;
    bool m_mouseLocked = false;
    bool m_userMode = true;

    double m_fillLeft = 0;
    double m_fillTop = 0;
    double m_fillWidth = 0;
    double m_fillHeight = 0;
};
