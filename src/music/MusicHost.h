#pragma once

class AnimationSurface;
class LocalEngine;
class QString;

// What the list with its local playback needs of the panel that holds it:
// the panel's engine and play light, its width, and its title. The panel
// answers; the list never reaches further into it.
class MusicHost {
public:
    virtual ~MusicHost() = default;

    virtual LocalEngine &localEngine() = 0;
    virtual AnimationSurface &playLight() = 0; // pstate
    virtual double panelWidth() const = 0;
    virtual void openList() = 0; // what a click on Label1 does

    // The moving title: stopped and back at its origin, or showing a new
    // text from there with the scroller started.
    virtual void resetTitle() = 0;
    virtual void showTitle(const QString &text) = 0;

    // The tag editor is another part: the list reaches it through the panel.
    virtual void showTag() = 0;
};
