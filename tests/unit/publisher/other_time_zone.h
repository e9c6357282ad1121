#pragma once

#include <cstdlib>
#include <ctime>

namespace vorthmere::publish::testing {

/// While it lives, local time is 14 hours ahead.
class OtherTimeZone {
public:
    OtherTimeZone() {
        set("XXX-14");
    }
    ~OtherTimeZone() {
        set("");
    }
    OtherTimeZone(const OtherTimeZone&) = delete;
    OtherTimeZone& operator=(const OtherTimeZone&) = delete;

private:
    static void set(const char* zone) {
#ifdef _WIN32
        _putenv_s("TZ", zone);
        _tzset();
#else
        if (*zone)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
#endif
    }
};

}  // namespace vorthmere::publish::testing
