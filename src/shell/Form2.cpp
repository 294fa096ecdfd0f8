#include "shell/Form2.h"

#include "platform/Connection.h"
#include "platform/Forms.h"

#include <QPushButton>

Form2::Form2(Platform &platform)
    : Form(platform, QStringLiteral("Form2"))
{
    auto button = [this](const char *name) {
        auto *b = new QPushButton(QStringLiteral("Command1"), this);
        b->setObjectName(QLatin1String(name));
        return b;
    };
    clk1 = button("clk1");
    clk2 = button("clk2");
    clk3 = button("clk3");
    on(clk1, &QPushButton::clicked, [this] { clk1_Click(); });
    on(clk2, &QPushButton::clicked, [this] { clk2_Click(); });
}

void Form2::Load()
{
    Hide();
    if (ProbeConnection(QLatin1String(ProbeUrl)))
        clk1_Click();
    else
        clk2_Click(); // nothing is said: without a connection the user just lands in the local player
}

bool Form2::ProbeConnection(const QString &url)
{
    return platform().connection.probe(url);
}

void Form2::clk1_Click()
{
    platform().forms.Show(QStringLiteral("Mainmap"));
    Hide();
}

void Form2::clk2_Click()
{
    platform().forms.Show(QStringLiteral("Mp3"));
    Hide();
}
