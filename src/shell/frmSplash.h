#pragma once

#include "platform/Form.h"

#include <QPixmap>

class QLabel;
class QPushButton;
class Timer;
class zzSlider;

// The start of the program: four bars and a row of status texts over twelve
// ticks, then the hand-over to Form2, which probes and routes. The texts are
// theatre: nothing is examined behind them.
class frmSplash : public Form {
    Q_OBJECT
public:
    explicit frmSplash(Platform &platform);

    void Load() override;
    void ShowHelpPage();

    qint16 SplashStep = 0;

    zzSlider *s1;
    zzSlider *s2;
    zzSlider *s3;
    zzSlider *s4;
    Timer *Timer1;
    Timer *Timer2;
    QLabel *lblProductName;
    QLabel *lblVersion;
    QLabel *Label1;
    QLabel *sts;
    QPushButton *cmdHelp;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool keyPreview(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void Timer1_Timer();
    void s1_Change();
    void cmdHelp_Click();
    void Form_KeyPress();
    void Form_Unload();

    QPixmap m_picture;
};
