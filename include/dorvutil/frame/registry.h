#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/static_data.h"

namespace dorvutil {

class MessageScreenProducer;
class ORVustring;

/// What the host says about the device it runs on; the registry only keeps it.
struct HardwareInfo {
    std::uint32_t m_deviceKind = 0;
    bool m_firstFlag = false;
    bool m_secondFlag = false;
};

/// The process-wide registry: owns every manager, creates them together in a fixed order on the first accessor call,
/// and destroys them in a fixed order when the last reference goes or the library is unloaded. One instance exists
/// (GetORVUtilGlobals). Accessors may be called from any thread; see frame/accessors.h for when they answer null.
class DORVUTIL_API ORVUtilGlobals : public StaticDataHolder {
public:
    ORVUtilGlobals();
    ~ORVUtilGlobals() override;

    const char* Name() override;
    void AddDependencies() override;
    bool Initialize() override;
    bool Teardown() override;

    CFileMgr* GetFileMgr() { return Get(m_fileMgr); }
    COrvAssertTracker* GetAssertTracker() { return Get(m_assertTracker); }  ///< Always null.
    COrvLowResTimerMgr* GetLowResTimerMgr() { return Get(m_lowResTimerMgr); }
    CSpecialCharMgr* GetSpecCharMgr() { return Get(m_specCharMgr); }
    COrvCacheMgr* GetCacheMgr() { return Get(m_cacheMgr); }
    COrvSystemMgrPc* GetSystemMgr() { return Get(m_systemMgr); }
    CLoadedLibraryHash* LibraryHash() { return Get(m_libraryHash); }
    CLogMgr* GetLogMgr() { return Get(m_logMgr); }
    CORVStringAllocator* GetStringAllocator() { return Get(m_stringAllocator); }
    CallbackMgr* GetCallbackMgr() { return Get(m_callbackMgr); }
    COrvBluetoothMgr* GetBluetoothMgr() { return Get(m_bluetoothMgr); }  ///< Always null.
    COrvSMSHandler* GetSMSHandler() { return Get(m_smsHandler); }        ///< Always null.
    COrvMMSHandler* GetMMSHandler() { return Get(m_mmsHandler); }        ///< Always null.
    COrvGSensor* GetGSensor() { return Get(m_gSensor); }
    CPhoneCallMonitor* GetPhoneCallMonitor() { return Get(m_phoneCallMonitor); }  ///< Always null.
    CTimeZoneUtil* GetTimeZoneUtil() { return Get(m_timeZoneUtil); }
    CSysAttr* GetSysAttr() { return Get(m_sysAttr); }
    COrvCompass* GetMagneticCompass() { return Get(m_compass); }
    ProgressMgr* GetProgressMgr() { return Get(m_progressMgr); }
    OrvBacklight* GetBacklight() { return Get(m_backlight); }  ///< Always null.

    /// The pools as they stand; nothing is set up.
    Allocator* FileHandlePool() const { return m_fileHandlePool.load(std::memory_order_acquire); }
    Allocator* TimerAgentPool() const { return m_timerAgentPool.load(std::memory_order_acquire); }
    Allocator* EventChainPool() const { return m_eventChainPool.load(std::memory_order_acquire); }

    /// The log manager as it stands; nothing is set up.
    CLogMgr* LogMgrAsItIs() const { return m_logMgr.load(std::memory_order_acquire); }

    bool GetMouseDown() const { return m_mouseDown; }
    void SetMouseDown(bool down) { m_mouseDown = down; }
    bool GetUIReady() const { return m_uiReady; }
    void SetUIReady(bool ready) { m_uiReady = ready; }
    bool IsSpeaking() const { return m_speaking; }
    void SetSpeaking(bool speaking) { m_speaking = speaking; }
    std::int32_t GetMapSpeakSleep() const { return m_mapSpeakSleep; }
    void SetMapSpeakSleep(std::int32_t sleep) { m_mapSpeakSleep = sleep; }
    const HardwareInfo& GetHardwareInfo() const { return m_hardwareInfo; }
    /// Copies the record. Set it before other threads read it.
    void SetHardwareInfo(const HardwareInfo& info) { m_hardwareInfo = info; }
    /// A writable empty text, shared by everybody: it must stay empty.
    char* GetNullCString() { return &m_nullCString; }
    /// Takes ownership of `producer` and lets go of the one before it without destroying it (it may be showing a
    /// screen).
    void SetMessageScreenProducer(MessageScreenProducer* producer) { m_messageScreenProducer = producer; }

    /// Makes `id` the user-interface thread; returns the id before it (0xFFFFFFFF at first).
    std::uint32_t UIThread_SetCurrent(std::uint32_t id) { return m_uiThread.exchange(id); }
    std::uint32_t UIThread_GetCurrent() const { return m_uiThread; }
    bool UIThread_AmICurrent() const;

    /// Tells the managers that care that the host has finished starting.
    void SignalStartupFinished();

    /// Shows a message and returns the button pressed: through the host's producer when `useProducer` is set, one is
    /// installed and the user interface is ready, else as a system message box with `type` as its style. With `quit`
    /// the producer's screen posts a quit request with code -1 and raises message 0; the message box ends the process
    /// with exit code -1 and does not return.
    std::int32_t MessageScreen(const ORVustring& text, bool quit, const ORVustring& caption, std::uint32_t type,
                               bool useProducer);

private:
    template <class T>
    using Slot = std::atomic<T*>;  // read without the lock by accessors, also while a tear-down empties it

    template <class T>
    T* Get(const Slot<T>& slot) {
        Setup();
        return slot.load(std::memory_order_acquire);
    }
    std::int32_t ShowThroughProducer(const ORVustring& text, bool quit, const ORVustring& caption, std::uint32_t type);

    Slot<CFileMgr> m_fileMgr{nullptr};
    Slot<COrvAssertTracker> m_assertTracker{nullptr};
    Slot<CSpecialCharMgr> m_specCharMgr{nullptr};
    Slot<CLoadedLibraryHash> m_libraryHash{nullptr};
    Slot<CLogMgr> m_logMgr{nullptr};
    Slot<CORVStringAllocator> m_stringAllocator{nullptr};
    Slot<CallbackMgr> m_callbackMgr{nullptr};
    Slot<COrvBluetoothMgr> m_bluetoothMgr{nullptr};
    Slot<OrvBacklight> m_backlight{nullptr};
    Slot<COrvSMSHandler> m_smsHandler{nullptr};
    Slot<COrvMMSHandler> m_mmsHandler{nullptr};
    Slot<ProgressMgr> m_progressMgr{nullptr};
    Slot<COrvGSensor> m_gSensor{nullptr};
    Slot<CTimeZoneUtil> m_timeZoneUtil{nullptr};
    Slot<CSysAttr> m_sysAttr{nullptr};
    Slot<COrvCompass> m_compass{nullptr};
    Slot<CPhoneCallMonitor> m_phoneCallMonitor{nullptr};
    Slot<COrvCacheMgr> m_cacheMgr{nullptr};
    Slot<COrvSystemMgrPc> m_systemMgr{nullptr};
    Slot<COrvLowResTimerMgr> m_lowResTimerMgr{nullptr};
    Slot<Allocator> m_fileHandlePool{nullptr};
    Slot<Allocator> m_timerAgentPool{nullptr};
    Slot<Allocator> m_eventChainPool{nullptr};
    HardwareInfo m_hardwareInfo;
    std::atomic<bool> m_mouseDown{false};
    std::atomic<bool> m_uiReady{false};
    char m_nullCString = '\0';
    std::atomic<bool> m_speaking{false};
    std::atomic<std::int32_t> m_mapSpeakSleep{0};
    Slot<MessageScreenProducer> m_messageScreenProducer{nullptr};  // owned
    std::atomic<std::uint32_t> m_uiThread{0xFFFFFFFFu};
};

}  // namespace dorvutil
