#pragma once

#include <QString>

class Connection {
public:
    virtual ~Connection() = default;
    // Blocking: connect to the URL's host and ask for the page. True on any
    // answer at all, false on any failure (no name, no route, refused, silence).
    virtual bool probe(const QString &url) = 0;
    // True when the machine has a default route over an interface that is up.
    virtual bool connectedState() = 0;
};
