#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Devices that a telephone or a handheld has and a desktop computer has not: everything here answers that there is
/// nothing, and leaves its outputs alone. Any thread.
namespace dorvutil {

/// The acceleration sensor; one instance, owned by the registry (GetGSensor).
class DORVUTIL_API COrvGSensor {
public:
    bool GetAcceleration(double* x, double* y, double* z) const;  ///< False.
};

/// The magnetic compass; one instance, owned by the registry (GetMagneticCompass).
class DORVUTIL_API COrvCompass {
public:
    bool GetHeading(double* degrees) const;  ///< False.
};

extern "C" {

DORVUTIL_API bool SMS_CanSMS();                                                      ///< False.
DORVUTIL_API bool SMS_SendSMSMessage(const char16_t* number, const char16_t* text);  ///< False.
DORVUTIL_API bool MMS_SendMMSMessage(const char16_t* number, const char16_t* text,
                                     const char16_t* attachment);  ///< False.

}  // extern "C"

}  // namespace dorvutil
