#include "Platform/Iso8601Date.h"

#include <array>
#include <cstdio>

namespace torvo {

namespace {

class NotADate {};

/// Parses fixed-width digits and separators from the beginning of a text.
class DateReader {
public:
    explicit DateReader(std::string_view text) : rest_(text) {}

    int digits(std::size_t count) {
        if (rest_.size() < count)
            fail();
        int value = 0;
        for (const char c : rest_.substr(0, count)) {
            if (c < '0' || c > '9')
                fail();
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return value;
    }

    char oneOf(std::string_view allowed) {
        if (rest_.empty() || allowed.find(rest_.front()) == std::string_view::npos)
            fail();
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    void end() const {
        if (!rest_.empty())
            fail();
    }

    [[noreturn]] static void fail() { throw NotADate(); }

private:
    std::string_view rest_;
};

std::chrono::sys_seconds parse(std::string_view text) {
    using namespace std::chrono;
    DateReader reader(text);
    const year y(reader.digits(4));
    reader.oneOf("-");
    const month m(static_cast<unsigned>(reader.digits(2)));
    reader.oneOf("-");
    const day d(static_cast<unsigned>(reader.digits(2)));
    reader.oneOf("T");
    const hours hour(reader.digits(2));
    reader.oneOf(":");
    const minutes minute(reader.digits(2));
    reader.oneOf(":");
    const seconds second(reader.digits(2));
    hours offsetHour{0};
    minutes offsetMinute{0};
    const char zone = reader.oneOf("Z+-");
    if (zone != 'Z') {
        offsetHour = hours(reader.digits(2));
        reader.oneOf(":");
        offsetMinute = minutes(reader.digits(2));
    }
    reader.end();
    const year_month_day date(y, m, d);
    if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s || offsetHour >= 24h ||
        offsetMinute >= 60min)
        DateReader::fail();
    const auto offset = offsetHour + offsetMinute;
    return sys_days(date) + hour + minute + second + (zone == '-' ? offset : -offset);
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
    try {
        return parse(text);
    } catch (const NotADate&) {
        return std::nullopt;
    }
}

} // namespace torvo
