#pragma once
// Plural rules of a few languages written out in C++: the oracle of the rules the tables give.

namespace plural_model {

inline constexpr auto few = [](unsigned long n) -> unsigned long {
    return n % 10 >= 2 && n % 10 <= 4 && (n % 100 < 10 || n % 100 >= 20);
};
// Russian and Ukrainian.
inline constexpr auto slavic = [](unsigned long n) -> unsigned long {
    return n % 10 == 1 && n % 100 != 11 ? 0 : few(n) ? 1 : 2;
};
inline constexpr auto polish = [](unsigned long n) -> unsigned long { return n == 1 ? 0 : few(n) ? 1 : 2; };
inline constexpr auto arabic = [](unsigned long n) -> unsigned long {
    return n == 0 ? 0 : n == 1 ? 1 : n == 2 ? 2 : n % 100 >= 3 && n % 100 <= 10 ? 3 : n % 100 >= 11 ? 4 : 5;
};
// gettext's default, English's and German's.
inline constexpr auto notOne = [](unsigned long n) -> unsigned long { return n != 1; };

} // namespace plural_model
