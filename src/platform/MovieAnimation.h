#pragma once

#include "platform/AnimationSurface.h"

#include <QPointer>

#include <memory>

class QLabel;
class QMovie;

// pstate on a QLabel that shows a QMovie. The label is a child of the
// parent given; it goes with the surface, or with the parent if that goes
// first.
class MovieAnimation : public AnimationSurface {
public:
    explicit MovieAnimation(QWidget *parent);
    ~MovieAnimation() override;

    QWidget *widget() override;
    QString FileName() const override { return m_file; }
    void setFileName(const QString &file) override;
    void Play() override;
    void Pause() override;
    void Stop() override;
    int PlayState() const override;

private:
    QPointer<QLabel> m_label;
    std::unique_ptr<QMovie> m_movie;
    QString m_file;
};
