#pragma once

#include "core/StartGuide.h"

#include <QObject>

class framGuide;
class GroundStation;
class QBoxLayout;

/// The guide's place in the program: shows it while anything that the station needs is missing, and never
/// again once nothing is or the user has closed it.
class FirstSteps : public QObject {
    Q_OBJECT
public:
    /// Puts the guide into `place`, unless it has done its work. The station must outlive this object.
    FirstSteps(GroundStation& ground, QBoxLayout& place, QObject* parent);

    /// Shows how things stand now.
    void Update();

Q_SIGNALS:
    /// The user wants to see to this.
    void Mend(StartGuide::Step step);

private:
    void End();

    GroundStation& m_ground;
    framGuide* m_guide = nullptr; // none once it has done its work
};
