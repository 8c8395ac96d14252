#include "Platform/Iso8601Date.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace torvo {

namespace {

/// Whether the text has the form of a sample in which "0" stands for any digit.
bool hasForm(std::string_view text, std::string_view sample) {
    return std::ranges::equal(text, sample, [](char character, char sampled) {
        return sampled == '0' ? character >= '0' && character <= '9' : character == sampled;
    });
}

/// The value of digits.
int number(std::string_view digits) {
    int value = 0;
    for (const char digit : digits)
        value = value * 10 + (digit - '0');
    return value;
}

} // namespace

std::string iso8601(std::chrono::sys_seconds time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count())));
    return text.data();
}

std::optional<std::chrono::sys_seconds> iso8601Date(std::string_view text) {
    using namespace std::chrono;
    constexpr std::string_view sample = "0000-00-00T00:00:00";
    if (!hasForm(text.substr(0, sample.size()), sample))
        return std::nullopt;
    const auto zone = text.substr(sample.size());
    if (zone != "Z" && !hasForm(zone, "+00:00") && !hasForm(zone, "-00:00"))
        return std::nullopt;

    const year_month_day date(year(number(text.substr(0, 4))),
                              month(static_cast<unsigned>(number(text.substr(5, 2)))),
                              day(static_cast<unsigned>(number(text.substr(8, 2)))));
    const hours hour(number(text.substr(11, 2)));
    const minutes minute(number(text.substr(14, 2)));
    const seconds second(number(text.substr(17, 2)));
    const hours offsetHour(zone == "Z" ? 0 : number(zone.substr(1, 2)));
    const minutes offsetMinute(zone == "Z" ? 0 : number(zone.substr(4, 2)));
    if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s || offsetHour >= 24h ||
        offsetMinute >= 60min)
        return std::nullopt;
    const auto offset = offsetHour + offsetMinute;
    return sys_days(date) + hour + minute + second + (zone.front() == '-' ? offset : -offset);
}

} // namespace torvo
