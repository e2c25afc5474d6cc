// The server under the plug-in: one object per process at a time, installed before the plug-in is loaded. Each pointer
// is a promise told in its own header. A second server is a second set of these.
#pragma once

#include <map>
#include <string>

#include "platform/version.h"

namespace platform {

class Scheduler;
class LogSink;
class Texts;
class Files;
class TurnKeeper;
class BackgroundThreads;
class Clock;
class HookTable;
class Libraries;
class EventBus;
class ItemRegistry;
class Level;
class Scoreboard;
class KnownPlayers;
class Http;
class StoreState;
class Records;
class Views;

class Properties {
public:
    virtual ~Properties() = default;
    [[nodiscard]] virtual int getServerPort() const = 0;
};

struct PluginRecord {
    std::string name, introduction;
    LL::Version version;
    std::map<std::string, std::string> others;
};

class PluginList {
public:
    virtual ~PluginList() = default;
    virtual void add(const PluginRecord& record) = 0;
};

struct Host {
    Scheduler* scheduler = nullptr;
    LogSink* log = nullptr;
    Texts* texts = nullptr;
    Files* files = nullptr;
    TurnKeeper* turn = nullptr;
    BackgroundThreads* background = nullptr;
    Clock* clock = nullptr;
    HookTable* hooks = nullptr;
    Libraries* libraries = nullptr;
    EventBus* events = nullptr;
    ItemRegistry* items = nullptr;
    Level* level = nullptr;            // null until the world is open
    Scoreboard* scoreboard = nullptr;  // null until the world is open
    KnownPlayers* knownplayers = nullptr;
    StoreState* stores = nullptr;
    Records* records = nullptr;  // null until the world is open
    Properties* properties = nullptr;
    PluginList* plugins = nullptr;
    Http* http = nullptr;    // null on a host that calls nobody
    Views* views = nullptr;  // null on a host that shows nothing
};

// The installed host. Throws std::logic_error when there is none.
[[nodiscard]] Host& host();
// Null takes it away.
void installhost(Host* host);

void RegisterPlugin(const std::string& name, const std::string& introduction, const LL::Version& version,
                    const std::map<std::string, std::string>& others);

// Called by the plug-in's module once all plug-ins are loaded; its only export.
inline constexpr const char* entrypoint = "onPostInit";

}  // namespace platform
