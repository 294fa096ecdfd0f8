#pragma once

#include "music/ListControl.h"

class QComboBox;

// A drop-down list seen as the list control that FillComboGenre fills.
class ComboList : public ListControl {
public:
    explicit ComboList(QComboBox &combo) : m_combo(combo) {}

    void Clear() override;
    void AddItem(const QString &item) override;
    void setListIndex(int index) override; // raises 380 outside -1 .. count - 1

private:
    QComboBox &m_combo;
};
