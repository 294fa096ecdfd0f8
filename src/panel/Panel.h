#pragma once

#include "panel/PanelTraits.h"
#include "platform/Form.h"

// The player panel: one design, five instances told apart by their traits.
class Panel : public Form {
    Q_OBJECT
public:
    Panel(Platform &platform, const PanelTraits &traits);

    const PanelTraits &traits() const { return m_traits; }

    void Load() override;

    // The panel's size once loaded, in twips.
    static constexpr int LoadedWidth = 12841;
    static constexpr int LoadedHeight = 4800;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void Form_Unload();

    const PanelTraits &m_traits;
};
