// Runs a test program, under the locale that ZELTO_TEST_LOCALE names where it is set: a host may
// have set any locale, and numbers in files and messages must not depend on it.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const char* locale = std::getenv("ZELTO_TEST_LOCALE");
    if (locale != nullptr && std::setlocale(LC_ALL, locale) == nullptr) {
        std::fprintf(stderr, "the locale %s is not available\n", locale);
        return 1;
    }
    // What the system says of a failure is compared word by word.
    std::setlocale(LC_MESSAGES, "C");
    return RUN_ALL_TESTS();
}
