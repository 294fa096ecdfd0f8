#include "panel/Panel.h"

#include "platform/OleColor.h"
#include "platform/Process.h"
#include "platform/Twips.h"

#include <QCloseEvent>

Panel::Panel(Platform &platform, const PanelTraits &traits)
    : Form(platform, QLatin1String(traits.name))
    , m_traits(traits)
{
    setWindowTitle(QLatin1String(traits.caption));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, oleColor(0x404040));
    setPalette(pal);
}

void Panel::Load()
{
    if (m_traits.cutsSystemMenu) {
        // The close command and its separator are cut from the system menu:
        // the close box does nothing.
        setWindowFlag(Qt::WindowCloseButtonHint, false);
    }
    resize(twips::toPixels(LoadedWidth), twips::toPixels(LoadedHeight));
}

void Panel::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (m_traits.hasUnload)
        guard([this] { Form_Unload(); });
}

void Panel::Form_Unload()
{
    platform().process.end();
}
