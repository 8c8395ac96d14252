#pragma once

namespace torvo::app {

inline constexpr const char* makerName = "Halvorine";
inline constexpr const char* makerURL = "https://halvorine.example/";

} // namespace torvo::app
