#include "app/FirstSteps.h"

#include "app/framGuide.h"
#include "core/GroundStation.h"
#include "foundation/settings/Settings.h"

#include <QBoxLayout>

#include <algorithm>

using StartGuide::State;

FirstSteps::FirstSteps(GroundStation& ground, QBoxLayout& place, QObject* parent)
    : QObject(parent)
    , m_ground(ground) {
    if (!Settings::IsOn(ground.cIni, Settings::guideShow))
        return;
    m_guide = new framGuide;
    m_guide->hide();
    place.addWidget(m_guide);
    connect(m_guide, &framGuide::Mend, this, &FirstSteps::Mend);
    connect(m_guide, &framGuide::CloseAsked, this, &FirstSteps::End);
    connect(&ground, &GroundStation::StatusLine, this, &FirstSteps::Update);
    connect(&ground, &GroundStation::ElementsChanged, this, &FirstSteps::Update);
    connect(&ground.station, &Station::Changed, this, &FirstSteps::Update);
}

void FirstSteps::Update() {
    if (m_guide == nullptr)
        return;
    const auto lines = StartGuide::Of(m_ground);
    const auto is = [](State state) {
        return [state](const StartGuide::Line& line) { return line.state == state; };
    };
    if (std::ranges::all_of(lines, is(State::There))) {
        End();
        return;
    }
    m_guide->Show(lines);
    if (std::ranges::any_of(lines, is(State::Missing)))
        m_guide->show();
}

void FirstSteps::End() {
    Settings::Save(m_ground.cIni, Settings::guideShow, clsIni::TrueOrFalse(false));
    m_guide->hide();
    m_guide->deleteLater(); // its own button may be about it
    m_guide = nullptr;
}
