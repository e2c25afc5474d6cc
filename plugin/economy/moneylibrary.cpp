// The binding asks for each entry point by name and does not test it; only a call finds out that one is missing.
#include "plugin/economy/moneylibrary.h"

#include <tuple>

#include "platform/host.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "plugin/base/globals.h"

namespace ordomart::moneylibrary {

namespace {

constexpr const char* libraryname = "LLmoney.dll";

template <class Function>
struct entrypoint {
    const char* name;
    Function* function = nullptr;

    void bind(void* library) { function = reinterpret_cast<Function*>(host().libraries->symbol(library, name)); }

    template <class... A>
    auto operator()(const A&... arguments) const -> decltype(function(arguments...)) {
        if (function != nullptr) return function(arguments...);
        logger.error("{} has no {}; the call gives nothing", libraryname, name);
        return {};
    }
};

entrypoint<platform::llmoney::Get> llmoneyget{"LLMoneyGet"};
entrypoint<platform::llmoney::Trans> llmoneytrans{"LLMoneyTrans"};
entrypoint<platform::llmoney::Reduce> llmoneyreduce{"LLMoneyReduce"};
entrypoint<platform::llmoney::Add> llmoneyadd{"LLMoneyAdd"};

}  // namespace

bool bind() {
    void* const library = host().libraries->load(libraryname);
    if (library == nullptr) return false;
    // The whole of what the library offers is asked for; the market has no use for what is dropped.
    const auto drop = [library](const char* name) { std::ignore = host().libraries->symbol(library, name); };
    llmoneyget.bind(library);
    drop("LLMoneySet");
    llmoneytrans.bind(library);
    llmoneyreduce.bind(library);
    llmoneyadd.bind(library);
    drop("LLMoneyGetHist");
    drop("LLMoneyClearHist");
    return true;
}

std::int64_t get(const std::string& xuid) { return llmoneyget(xuid); }
bool trans(const std::string& from, const std::string& to, std::int64_t value, const std::string& note) {
    return llmoneytrans(from, to, value, note);
}
bool reduce(const std::string& xuid, std::int64_t value) { return llmoneyreduce(xuid, value); }
bool add(const std::string& xuid, std::int64_t value) { return llmoneyadd(xuid, value); }

}  // namespace ordomart::moneylibrary
