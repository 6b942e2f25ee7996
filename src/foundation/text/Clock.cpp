#include "foundation/text/Clock.h"

#include <chrono>
#include <ctime>

qint64 Clock::Milliseconds() const {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

CalendarRecord Clock::UtcAt(qint64 now) {
    const qint64 second = now >= 0 ? now / 1000 : (now - 999) / 1000;
    CalendarRecord utc = ToCalendar(DateOf(1970, 1, 1) + static_cast<double>(second) / secondsPerDay);
    utc.milliseconds = static_cast<int>(now - second * 1000);
    return utc;
}

std::optional<CalendarRecord> Clock::ToLocal(const CalendarRecord& utc) const {
    std::tm parts{};
    parts.tm_year = utc.year - 1900;
    parts.tm_mon = utc.month - 1;
    parts.tm_mday = utc.day;
    parts.tm_hour = utc.hour;
    parts.tm_min = utc.minute;
    parts.tm_sec = utc.second;
    const std::time_t seconds = timegm(&parts);
    tzset(); // the user may have changed the zone while the program runs
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr)
        return std::nullopt;
    return CalendarRecord{.year = local.tm_year + 1900,
                          .month = local.tm_mon + 1,
                          .dayOfWeek = local.tm_wday,
                          .day = local.tm_mday,
                          .hour = local.tm_hour,
                          .minute = local.tm_min,
                          .second = local.tm_sec,
                          .milliseconds = utc.milliseconds};
}
