#pragma once

#include <QtGlobal>

#include <unistd.h>

/// For as long as it lives the test is an ordinary user, to whom rights mean something.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (geteuid() == 0)
            m_changed = seteuid(65534) == 0;
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() {
        if (m_changed && seteuid(0) != 0)
            qFatal("cannot become root again");
    }

    /// Whether rights hold now; without them there is nothing to test.
    static bool Is() { return geteuid() != 0; }

private:
    bool m_changed = false;
};
