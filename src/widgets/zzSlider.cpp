#include "widgets/zzSlider.h"

#include "basic/Checked.h"
#include "basic/NumberText.h"
#include "basic/Rounding.h"
#include "basic/RuntimeError.h"
#include "platform/Dialogs.h"
#include "platform/ErrorBoundary.h"
#include "platform/OleColor.h"
#include "platform/Twips.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr double PerPixel = twips::PerPixel;

// The track paints itself through the slider, which owns the state it shows.
class Track : public QWidget {
public:
    Track(QWidget *parent, std::function<void(QPainter &)> paint)
        : QWidget(parent)
        , m_paint(std::move(paint))
    {
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        m_paint(painter);
    }

private:
    std::function<void(QPainter &)> m_paint;
};

int buttonCode(Qt::MouseButtons buttons)
{
    return (buttons & Qt::LeftButton ? 1 : 0) | (buttons & Qt::RightButton ? 2 : 0)
        | (buttons & Qt::MiddleButton ? 4 : 0);
}

// Twips to whole pixels. A fill far outside any screen (a value rounded past
// a tiny range) is held to what a widget can take rather than wrapped.
int pixels(double tw)
{
    constexpr double limit = QWIDGETSIZE_MAX * PerPixel;
    return twips::toPixels(std::clamp(tw, -limit, limit));
}

Qt::CursorShape cursorFor(int pointer)
{
    switch (pointer) {
    case 2: return Qt::CrossCursor;
    case 3: return Qt::IBeamCursor;
    case 5: case 15: return Qt::SizeAllCursor;
    case 6: return Qt::SizeBDiagCursor;
    case 7: return Qt::SizeVerCursor;
    case 8: return Qt::SizeFDiagCursor;
    case 9: return Qt::SizeHorCursor;
    case 10: return Qt::UpArrowCursor;
    case 11: return Qt::WaitCursor;
    case 12: return Qt::ForbiddenCursor;
    case 13: return Qt::BusyCursor;
    case 14: return Qt::WhatsThisCursor;
    default: return Qt::ArrowCursor;
    }
}

void applyPointer(QWidget *w, int pointer)
{
    if (pointer == 0)
        w->unsetCursor(); // 0 leaves the choice to whatever lies below
    else
        w->setCursor(cursorFor(pointer));
}

// Stored settings come from outside; one of the wrong kind is a type
// mismatch (13) and one out of range an overflow (6), never a guess.
double numberOf(const QVariant &v)
{
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (!ok)
        basic::raise(basic::TypeMismatch);
    return d;
}

std::uint32_t colourOf(const QVariant &v)
{
    // Colours are longs in the store: 0x8000000F may come back as negative.
    const double d = basic::roundHalfEven(numberOf(v));
    if (!(d >= -2147483648.0 && d <= 4294967295.0))
        basic::raise(basic::Overflow);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(d));
}

bool flagOf(const QVariant &v)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed();
        if (s.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return true;
        if (s.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return false;
    }
    return numberOf(v) != 0;
}

QFont fontOf(const QVariant &v)
{
    if (v.typeId() == QMetaType::QFont)
        return v.value<QFont>();
    QFont font;
    if (v.typeId() == QMetaType::QString && font.fromString(v.toString()))
        return font;
    basic::raise(basic::TypeMismatch);
}

QString textOf(const QVariant &v)
{
    if (!v.canConvert<QString>())
        basic::raise(basic::TypeMismatch);
    return v.toString();
}

} // namespace

// The widget's own event handlers are where its errors meet the event loop:
// they end the program there rather than unwind through Qt's dispatch.
template <class Body>
void zzSlider::atEventEdge(Body &&body)
{
    boundary::run(m_dialogs, m_process, std::forward<Body>(body));
}

zzSlider::zzSlider(Dialogs &dialogs, Process &process, QWidget *parent)
    : QWidget(parent)
    , m_dialogs(dialogs)
    , m_process(process)
{
    setFocusPolicy(Qt::StrongFocus);

    m_track = new Track(this, [this](QPainter &painter) { paintTrack(painter); });
    m_track->setObjectName(QStringLiteral("picBackGround"));
    m_track->installEventFilter(this);

    m_fill = new QLabel(m_track);
    m_fill->setObjectName(QStringLiteral("lblSlider"));
    m_fill->setAutoFillBackground(true);
    m_fill->installEventFilter(this);

    // 4815 by 615 twips, the size a new slider is drawn at.
    resize(321, 41);
    m_track->setGeometry(rect());
    applyForeColor();
    applySliderColor();
    m_fillHeight = trackHeight();
    applyFill();
}

void zzSlider::setBackColor(std::uint32_t color)
{
    m_backColor = color;
    m_track->update();
    emit PropertyChanged(QStringLiteral("BackColor"));
}

void zzSlider::setForeColor(std::uint32_t color)
{
    m_foreColor = color;
    applyForeColor();
    emit PropertyChanged(QStringLiteral("ForeColor"));
}

bool zzSlider::Enabled() const
{
    // The control's own setting, not whether a disabled parent greys it out.
    return !testAttribute(Qt::WA_ForceDisabled);
}

void zzSlider::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    emit PropertyChanged(QStringLiteral("Enabled"));
}

QFont zzSlider::Font() const
{
    return m_fill->font();
}

void zzSlider::setFont(const QFont &font)
{
    m_fill->setFont(font);
    emit PropertyChanged(QStringLiteral("Font"));
}

void zzSlider::setBorderStyle(std::int16_t style)
{
    m_borderStyle = style;
    m_track->update();
    emit PropertyChanged(QStringLiteral("BorderStyle"));
}

void zzSlider::Refresh()
{
    repaint();
}

void zzSlider::setMousePointer(std::int16_t pointer)
{
    m_mousePointer = pointer;
    applyPointer(this, pointer);
    applyPointer(m_track, pointer);
    applyPointer(m_fill, pointer);
    emit PropertyChanged(QStringLiteral("MousePointer"));
}

void zzSlider::setSliderColor(std::uint32_t color)
{
    m_sliderColor = color;
    applySliderColor();
    emit PropertyChanged(QStringLiteral("SliderColor"));
}

// The bounds are taken as given: a bound that leaves Value outside the range
// moves nothing until the next Value let. Any error on the way (a host's
// PropertyChanged handler is all that can fail) is shown, not raised.
void zzSlider::setMaxValue(float value)
{
    try {
        m_maxValue = value;
        emit PropertyChanged(QStringLiteral("MaxValue"));
    } catch (const basic::RuntimeError &e) {
        showCaught(e.number(), e.description());
    }
}

void zzSlider::setMinValue(float value)
{
    try {
        m_minValue = value;
        emit PropertyChanged(QStringLiteral("MinValue"));
    } catch (const basic::RuntimeError &e) {
        showCaught(e.number(), e.description());
    }
}

void zzSlider::setValue(float value)
{
    // With MinValue above MaxValue this can only ever give one of the two.
    const float taken = value < m_minValue ? m_minValue : value > m_maxValue ? m_maxValue : value;
    m_value = basic::CSng(basic::roundHalfEven(taken, m_roundValue));
    emit PropertyChanged(QStringLiteral("Value"));
    // Equal bounds fail here and the error goes to the caller, leaving the
    // mouse locked if the mouse started it; a later good Value frees it.
    placeFill();
    m_fill->setToolTip(basic::generalText(m_value));
    emit Change();
    // Only now: a Change handler that pumps events must not re-enter the mouse.
    m_mouseLocked = false;
}

void zzSlider::setSliderStyle(std::int32_t style)
{
    if (m_userMode)
        basic::raise(basic::SetNotSupportedAtRuntime);
    const bool differs = style != m_sliderStyle;
    m_sliderStyle = style;
    emit PropertyChanged(QStringLiteral("SliderStyle"));
    if (differs)
        applySliderStyle();
}

void zzSlider::setSmallChange(float change)
{
    try {
        m_smallChange = change >= 0 ? change : 1;
        emit PropertyChanged(QStringLiteral("SmallChange"));
        if (!(change >= 0))
            basic::raise(basic::InvalidPropertyValue);
    } catch (const basic::RuntimeError &e) {
        showCaught(e.number(), e.description());
    }
}

void zzSlider::setLargeChange(float change)
{
    try {
        m_largeChange = change >= 0 ? change : 1;
        emit PropertyChanged(QStringLiteral("LargeChange"));
        if (!(change >= 0))
            basic::raise(basic::InvalidPropertyValue);
    } catch (const basic::RuntimeError &e) {
        showCaught(e.number(), e.description());
    }
}

void zzSlider::setRoundValue(std::int16_t decimals)
{
    try {
        m_roundValue = decimals >= 0 ? decimals : std::int16_t{0};
        emit PropertyChanged(QStringLiteral("RoundValue"));
        if (decimals < 0)
            basic::raise(basic::InvalidPropertyValue);
    } catch (const basic::RuntimeError &e) {
        showCaught(e.number(), e.description());
    }
}

void zzSlider::setToolTipText(const QString &text)
{
    m_toolTipText = text;
    m_track->setToolTip(text);
    emit PropertyChanged(QStringLiteral("ToolTipText"));
}

void zzSlider::ReadProperties(const PropertyBag &bag)
{
    m_backColor = colourOf(bag.ReadProperty(QStringLiteral("BackColor"), 0xFFFFFFu));
    m_track->update();
    m_foreColor = colourOf(bag.ReadProperty(QStringLiteral("ForeColor"), 0x80000012u));
    applyForeColor();
    QWidget::setEnabled(flagOf(bag.ReadProperty(QStringLiteral("Enabled"), true)));
    m_fill->setFont(fontOf(bag.ReadProperty(QStringLiteral("Font"), ambientFont())));
    m_borderStyle = basic::CInt(numberOf(bag.ReadProperty(QStringLiteral("BorderStyle"), 1)));
    // Only the control gets the stored pointer; track and fill keep theirs.
    m_mousePointer = basic::CInt(numberOf(bag.ReadProperty(QStringLiteral("MousePointer"), 0)));
    applyPointer(this, m_mousePointer);
    // Not the 0xFFC0C0 it is written against: an unchanged fill colour is
    // dropped on writing and comes back as the button face. Keep it so.
    m_sliderColor = colourOf(bag.ReadProperty(QStringLiteral("SliderColor"), 0x8000000Fu));
    applySliderColor();
    m_maxValue = basic::CSng(numberOf(bag.ReadProperty(QStringLiteral("MaxValue"), 0.0f)));
    m_minValue = basic::CSng(numberOf(bag.ReadProperty(QStringLiteral("MinValue"), 0.0f)));
    m_value = basic::CSng(numberOf(bag.ReadProperty(QStringLiteral("Value"), 0.0f)));
    m_sliderStyle = basic::CLng(numberOf(bag.ReadProperty(QStringLiteral("SliderStyle"), 0)));
    m_smallChange = basic::CSng(numberOf(bag.ReadProperty(QStringLiteral("SmallChange"), 1.0f)));
    m_largeChange = basic::CSng(numberOf(bag.ReadProperty(QStringLiteral("LargeChange"), 1.0f)));
    m_toolTipText = textOf(bag.ReadProperty(QStringLiteral("ToolTipText"), QString()));
    m_track->setToolTip(m_toolTipText);
    m_roundValue = basic::CInt(numberOf(bag.ReadProperty(QStringLiteral("RoundValue"), 0)));

    // The stored Value stays in the field only; the fill starts empty and
    // shows it from the first Value let on.
    if (m_sliderStyle == 0) {
        m_fillWidth = 0;
        m_fillHeight = trackHeight();
    } else if (m_sliderStyle == 1) {
        m_fillHeight = 0;
        m_fillWidth = trackWidth();
    }
    applyFill();
}

void zzSlider::WriteProperties(PropertyBag &bag) const
{
    bag.WriteProperty(QStringLiteral("BackColor"), m_backColor, 0xFFFFFFu);
    bag.WriteProperty(QStringLiteral("ForeColor"), m_foreColor, 0x80000012u);
    bag.WriteProperty(QStringLiteral("Enabled"), Enabled(), true);
    bag.WriteProperty(QStringLiteral("Font"), Font(), ambientFont());
    bag.WriteProperty(QStringLiteral("BorderStyle"), int{m_borderStyle}, 1);
    bag.WriteProperty(QStringLiteral("MousePointer"), int{m_mousePointer}, 0);
    bag.WriteProperty(QStringLiteral("SliderColor"), m_sliderColor, 0xFFC0C0u);
    bag.WriteProperty(QStringLiteral("MaxValue"), m_maxValue, 0.0f);
    bag.WriteProperty(QStringLiteral("MinValue"), m_minValue, 0.0f);
    bag.WriteProperty(QStringLiteral("Value"), m_value, 0.0f);
    bag.WriteProperty(QStringLiteral("SliderStyle"), m_sliderStyle, 0);
    bag.WriteProperty(QStringLiteral("SmallChange"), m_smallChange, 1.0f);
    bag.WriteProperty(QStringLiteral("LargeChange"), m_largeChange, 1.0f);
    bag.WriteProperty(QStringLiteral("ToolTipText"), m_toolTipText, QString());
    bag.WriteProperty(QStringLiteral("RoundValue"), int{m_roundValue}, 0);
}

void zzSlider::TrackMouse(int button, double x, double y)
{
    if (button != 1 || m_mouseLocked || m_minValue > m_maxValue)
        return;
    const double w = trackWidth();
    const double h = trackHeight();
    const double range = static_cast<double>(m_maxValue) - m_minValue;

    if (m_sliderStyle == 1) {
        m_fillWidth = w;
        applyFill();
        if (PerPixel < y && y <= h) {
            m_mouseLocked = true;
            setValue(basic::CSng((h - y) / h * range + m_minValue));
        } else if (y <= 0) { // the track's top
            m_mouseLocked = true;
            setValue(m_maxValue);
        } else if (y > h) {
            m_mouseLocked = true;
            setValue(m_minValue);
        }
        // The first pixel below the top changes nothing: there is no
        // counterpart of the lying slider's first-pixel rule here.
    } else if (m_sliderStyle == 0) {
        m_fillHeight = h;
        applyFill();
        if (PerPixel < x && x <= w) {
            m_mouseLocked = true;
            setValue(basic::CSng(range * (x / w) + m_minValue));
        } else if (x <= PerPixel) {
            // Deliberate: in the first pixel the raw twips become the value,
            // so a 1..100 bar jumps to about 10 rather than to its minimum.
            m_mouseLocked = true;
            setValue(static_cast<float>(basic::CLng(x > m_minValue ? x : m_minValue)));
        } else {
            m_mouseLocked = true;
            setValue(m_maxValue);
        }
    }
    // Also when nothing changed: a drag gives Change, then SliderScroll.
    emit SliderScroll();
}

bool zzSlider::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_track || watched == m_fill) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            mouseOn(static_cast<QWidget *>(watched), static_cast<QMouseEvent *>(event));
            return true; // or the parent would see the same press again
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void zzSlider::mousePressEvent(QMouseEvent *event) { mouseOn(this, event); }
void zzSlider::mouseDoubleClickEvent(QMouseEvent *event) { mouseOn(this, event); }
void zzSlider::mouseMoveEvent(QMouseEvent *event) { mouseOn(this, event); }
void zzSlider::mouseReleaseEvent(QMouseEvent *event) { mouseOn(this, event); }

void zzSlider::mouseOn(QWidget *part, QMouseEvent *event)
{
    event->accept();
    const double x = twips::fromPixels(event->position().x());
    double y = twips::fromPixels(event->position().y());
    if (part == m_fill)
        y += m_fillTop; // onto the track; x is left alone, the fill starts at its left edge
    atEventEdge([&] {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            m_pressedOn = event->button() == Qt::LeftButton ? part : nullptr;
            TrackMouse(buttonCode(event->button()), x, y);
            break;
        case QEvent::MouseMove:
            TrackMouse(buttonCode(event->buttons()), x, y);
            break;
        case QEvent::MouseButtonRelease: {
            const bool click = event->button() == Qt::LeftButton && m_pressedOn == part
                && part->rect().contains(event->position().toPoint());
            m_pressedOn = nullptr;
            if (click)
                emit Click();
            break;
        }
        default:
            break;
        }
    });
}

void zzSlider::keyPressEvent(QKeyEvent *event)
{
    double step = 0;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right: step = m_smallChange; break;
    case Qt::Key_Left:
    case Qt::Key_Down: step = -static_cast<double>(m_smallChange); break;
    case Qt::Key_PageUp: step = m_largeChange; break;
    case Qt::Key_PageDown: step = -static_cast<double>(m_largeChange); break;
    default: QWidget::keyPressEvent(event); return;
    }
    event->accept();
    // Through Value let, so clamped and rounded; keys never raise SliderScroll.
    atEventEdge([&] { setValue(basic::CSng(m_value + step)); });
}

void zzSlider::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    m_hasFocus = true;
    m_track->update();
}

void zzSlider::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    m_hasFocus = false;
    update();
    m_track->update();
}

void zzSlider::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_track->setGeometry(rect()); // the fill waits for the next value
}

double zzSlider::trackWidth() const { return width() * PerPixel; }
double zzSlider::trackHeight() const { return height() * PerPixel; }

void zzSlider::placeFill()
{
    if (m_minValue > m_maxValue)
        return;
    // No guard for equal bounds: that division fails, and the caller hears it.
    const double f = basic::fdiv(static_cast<double>(m_value) - m_minValue,
                                 static_cast<double>(m_maxValue) - m_minValue);
    const double w = trackWidth();
    const double h = trackHeight();
    if (m_sliderStyle == 0) {
        m_fillHeight = h;
        m_fillWidth = f * w;
    } else if (m_sliderStyle == 1) {
        m_fillWidth = w;
        m_fillTop = h - f * h;
        m_fillHeight = h - m_fillTop;
    } else {
        return;
    }
    applyFill();
}

void zzSlider::applySliderStyle()
{
    if (m_sliderStyle != 0 && m_sliderStyle != 1)
        return;
    resize(height(), width());
    m_track->setGeometry(rect()); // a hidden widget gets its resize event only when shown
    if (m_sliderStyle == 1) {
        m_fillWidth = trackWidth();
        m_fillHeight = 0;
        m_fillTop = trackHeight();
    } else {
        // The top stays where standing left it; only Value lets move it.
        m_fillHeight = trackHeight();
        m_fillWidth = 0;
    }
    applyFill();
}

void zzSlider::applyFill()
{
    // Round the edges, not the sizes, so the fill meets the track's end.
    const int left = pixels(m_fillLeft);
    const int top = pixels(m_fillTop);
    m_fill->setGeometry(left, top, std::max(0, pixels(m_fillLeft + m_fillWidth) - left),
                        std::max(0, pixels(m_fillTop + m_fillHeight) - top));
}

void zzSlider::applyForeColor()
{
    QPalette palette = m_fill->palette();
    palette.setColor(QPalette::WindowText, oleColor(m_foreColor));
    m_fill->setPalette(palette);
}

void zzSlider::applySliderColor()
{
    QPalette palette = m_fill->palette();
    palette.setColor(QPalette::Window, oleColor(m_sliderColor));
    m_fill->setPalette(palette);
}

void zzSlider::paintTrack(QPainter &painter)
{
    const QColor back = oleColor(m_backColor);
    painter.fillRect(m_track->rect(), back);
    if (m_borderStyle == 1) {
        painter.setPen(QPen(Qt::black, 0));
        painter.drawRect(m_track->rect().adjusted(0, 0, -1, -1));
    }
    if (!m_hasFocus)
        return;
    // From (3, 3) to 3 pixels short of the control's far corner, exclusive;
    // drawRect puts the far edges one pixel beyond the rectangle's size.
    const QRect mark(3, 3, width() - 7, height() - 7);
    if (mark.isEmpty())
        return;
    QPen dots(QColor(255 - back.red(), 255 - back.green(), 255 - back.blue()), 0, Qt::DotLine);
    painter.setPen(dots);
    painter.drawRect(mark);
}

void zzSlider::showCaught(int number, const QString &description)
{
    m_dialogs.MsgBox(QString::number(number) + QStringLiteral(" : ") + description);
}

QFont zzSlider::ambientFont() const
{
    return parentWidget() ? parentWidget()->font() : QApplication::font();
}
