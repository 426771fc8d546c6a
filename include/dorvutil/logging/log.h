#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/logging/subscriber.h"

/// The log for callers of plain functions. Each does nothing, and answers as stated, while there is no log manager
/// (GetLogMgr); otherwise see the member of CLogMgr of the same name. Any thread, also while the registry is being torn
/// down. Texts are UTF-8.
namespace dorvutil {

extern "C" {

/// The identifier of the publisher of that name, made if need be; -1 for null, or when memory ran out.
DORVUTIL_API std::int32_t Log_CreatePublisher(const char* name);
DORVUTIL_API void Log_DeletePublisher(std::int32_t publisher);

/// -1 when it cannot be created.
DORVUTIL_API std::int32_t Log_CreateSubscriber(std::int32_t subscription, LogSubscriberHandler handler, void* context);
/// After the return the handler is not called again.
DORVUTIL_API void Log_DeleteSubscriber(std::int32_t subscriber);
DORVUTIL_API std::int32_t Log_Subscribe(std::int32_t subscriber, std::int32_t publisher);    ///< -1
DORVUTIL_API std::int32_t Log_Unsubscribe(std::int32_t subscriber, std::int32_t publisher);  ///< Always -1.

/// Publishes and waits for space; the size of the record, 0 without a manager, 0 or -1 (lost) during tear-down.
DORVUTIL_API std::int32_t Log_Publish(int publisher, int level, const char* sourceFile, int line, const char* message);

DORVUTIL_API const char* Log_GetLoglevelName(std::int32_t level);  ///< Null.
/// Null. The name lives as long as its publisher.
DORVUTIL_API const char* Log_GetPublisherName(std::int32_t publisher);

/// Stops delivery for good. What has not been delivered stays where it is; publishers block once the buffer is full.
DORVUTIL_API void Log_Stop();

/// The publisher of a log file of its own, "<logging directory><name>.log"; -1 when it cannot be created.
DORVUTIL_API std::int32_t Log_CreateDedicatedFileLogger(const char* name);
/// Forgets the pair; the publisher and its file stay.
DORVUTIL_API void Log_DeleteDedicatedFileLogger(std::int32_t publisher);

/// Appends the text and a line feed to "autotest_results.txt" in the current directory. Needs the file manager only.
DORVUTIL_API void Log_AutoTest(const char* text);

/// Where log files opened from now on lie; null: beside the executable again, as at the start. False, with nothing
/// changed, for a text of more than 254 bytes. Needs no manager.
DORVUTIL_API bool Log_SetLoggingDirectory(const char* directory);

}  // extern "C"

}  // namespace dorvutil
