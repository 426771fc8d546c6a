#include "dorvutil/logging/log.h"

#include "dorvutil/logging/log_file.h"
#include "dorvutil/logging/manager_use.h"

namespace dorvutil {

std::int32_t Log_CreatePublisher(const char* name) {
    const LogManagerUse manager;
    return manager ? manager->CreatePublisher(name) : -1;
}

void Log_DeletePublisher(std::int32_t publisher) {
    if (const LogManagerUse manager; manager) manager->DeletePublisher(publisher);
}

std::int32_t Log_CreateSubscriber(std::int32_t subscription, LogSubscriberHandler handler, void* context) {
    const LogManagerUse manager;
    return manager ? manager->CreateSubscriber(subscription, handler, context) : -1;
}

void Log_DeleteSubscriber(std::int32_t subscriber) {
    if (const LogManagerUse manager; manager) manager->DeleteSubscriber(subscriber);
}

std::int32_t Log_Subscribe(std::int32_t subscriber, std::int32_t publisher) {
    const LogManagerUse manager;
    return manager ? manager->Subscribe(subscriber, publisher) : -1;
}

std::int32_t Log_Unsubscribe(std::int32_t subscriber, std::int32_t publisher) {
    const LogManagerUse manager;
    return manager ? manager->Unsubscribe(subscriber, publisher) : -1;
}

std::int32_t Log_Publish(int publisher, int level, const char* sourceFile, int line, const char* message) {
    const LogManagerUse manager;
    return manager ? manager->PublishInTurn(publisher, level, sourceFile, line, message) : 0;
}

const char* Log_GetLoglevelName(std::int32_t level) {
    const LogManagerUse manager;
    return manager ? manager->GetLoglevelName(level) : nullptr;
}

const char* Log_GetPublisherName(std::int32_t publisher) {
    const LogManagerUse manager;
    return manager ? manager->GetPublisherName(publisher) : nullptr;
}

void Log_Stop() {
    if (const LogManagerUse manager; manager) manager->PlatformCleanup();
}

std::int32_t Log_CreateDedicatedFileLogger(const char* name) {
    const LogManagerUse manager;
    return manager ? manager->CreateDedicatedFileLogger(name) : -1;
}

void Log_DeleteDedicatedFileLogger(std::int32_t publisher) {
    if (const LogManagerUse manager; manager) manager->DeleteDedicatedFileLogger(publisher);
}

void Log_AutoTest(const char* text) {
    const auto file = OpenLogFile("autotest_results.txt", eAccessAppend);
    if (!file) return;
    ORVustring line(text);
    line += '\n';
    file->Write(line.c_str(), line.length(), 1);
    file->Close();
}

}  // namespace dorvutil
