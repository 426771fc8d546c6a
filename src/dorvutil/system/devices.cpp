#include "dorvutil/system/devices.h"

namespace dorvutil {

bool COrvGSensor::GetAcceleration(double*, double*, double*) const { return false; }

bool COrvCompass::GetHeading(double*) const { return false; }

bool SMS_CanSMS() { return false; }

bool SMS_SendSMSMessage(const char16_t*, const char16_t*) { return false; }

bool MMS_SendMMSMessage(const char16_t*, const char16_t*, const char16_t*) { return false; }

}  // namespace dorvutil
