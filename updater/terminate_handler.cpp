// GNU's C++ library has a handler that prints the type of an exception that nobody caught, and with it a demangler of some
// 45 KB. Nobody would see that text: the program ends by a handler of its own. So the library gets a plain one from here.
#include <cstdlib>

#ifdef __GLIBCXX__
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier)

void __verbose_terminate_handler();  // NOLINT(bugprone-reserved-identifier)

void __verbose_terminate_handler() {  // NOLINT(bugprone-reserved-identifier)
    std::abort();
}

}  // namespace __gnu_cxx
#endif
