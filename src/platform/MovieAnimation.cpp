#include "platform/MovieAnimation.h"

#include <QLabel>
#include <QMovie>

MovieAnimation::MovieAnimation(QWidget *parent)
    : m_label(new QLabel(parent))
{
}

MovieAnimation::~MovieAnimation()
{
    if (m_label)
        m_label->setMovie(nullptr);
    delete m_label.data();
}

QWidget *MovieAnimation::widget()
{
    return m_label.data();
}

void MovieAnimation::setFileName(const QString &file)
{
    m_file = file;
    if (m_label)
        m_label->clear();
    m_movie.reset();
    // A file that is missing or no picture shows nothing and says nothing.
    auto movie = std::make_unique<QMovie>(file);
    if (!movie->isValid())
        return;
    movie->setCacheMode(QMovie::CacheAll);
    m_movie = std::move(movie);
    if (m_label)
        m_label->setMovie(m_movie.get());
    m_movie->jumpToFrame(0);
}

void MovieAnimation::Play()
{
    if (!m_movie)
        return;
    switch (m_movie->state()) {
    case QMovie::Running:
        break;
    case QMovie::Paused:
        m_movie->setPaused(false);
        break;
    case QMovie::NotRunning:
        m_movie->start();
        break;
    }
}

void MovieAnimation::Pause()
{
    if (m_movie && m_movie->state() == QMovie::Running)
        m_movie->setPaused(true);
}

void MovieAnimation::Stop()
{
    if (!m_movie)
        return;
    m_movie->stop();
    m_movie->jumpToFrame(0);
}

int MovieAnimation::PlayState() const
{
    if (!m_movie)
        return 0;
    switch (m_movie->state()) {
    case QMovie::Running:
        return 2;
    case QMovie::Paused:
        return 1;
    case QMovie::NotRunning:
        return 0;
    }
    return 0;
}
