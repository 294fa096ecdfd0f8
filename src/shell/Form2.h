#pragma once

#include "platform/Form.h"

class QPushButton;

// Never seen: its Load probes the network once and routes to the map or to
// the local player. Its buttons are the two routes, called directly.
class Form2 : public Form {
    Q_OBJECT
public:
    explicit Form2(Platform &platform);

    void Load() override;
    bool ProbeConnection(const QString &url);

    // Any well-known public server that answers plain http will do.
    static constexpr const char *ProbeUrl = "http://example.com/";

    QPushButton *clk1;
    QPushButton *clk2;
    QPushButton *clk3; // has no handler

private:
    void clk1_Click();
    void clk2_Click();
};
