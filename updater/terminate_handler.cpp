// Replaces a function of GNU's C++ library. The library's own prints the type of an exception that nobody caught and
// adds a demangler of some 45 KB to the program. Nobody would see the text: the program sets its own handler.
#include <cstdlib>

#ifdef __GLIBCXX__
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier)

void __verbose_terminate_handler();  // NOLINT(bugprone-reserved-identifier)

void __verbose_terminate_handler() {  // NOLINT(bugprone-reserved-identifier)
    std::abort();
}

}  // namespace __gnu_cxx
#endif
