// The binding asks for each entry point by name and does not test it; only a call finds out that one is missing. The
// last one is not every library's: without it a refusal has no reason that could be told.
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
entrypoint<platform::llmoney::GetHist> llmoneygethist{"LLMoneyGetHist"};
entrypoint<platform::llmoney::LastError> llmoneylasterror{"LLMoneyLastError"};

// Why the last call did not work; empty when it did, or when the library does not tell.
std::string reason() {
    const char* const text = llmoneylasterror.function != nullptr ? llmoneylasterror() : nullptr;
    return text != nullptr ? text : "";
}

template <class Function, class... A>
moneyrefusal refusalof(const entrypoint<Function>& operation, const A&... arguments) {
    if (operation(arguments...)) return {};
    if (operation.function == nullptr) return fmt::format("there is no {}", operation.name);
    const std::string why = reason();
    return why.empty() ? "no reason given" : why;
}

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
    llmoneygethist.bind(library);
    drop("LLMoneyClearHist");
    llmoneylasterror.bind(library);
    return true;
}

std::optional<std::int64_t> get(const std::string& xuid) {
    const std::int64_t balance = llmoneyget(xuid);
    if (llmoneyget.function == nullptr) return {};
    const std::string why = balance == 0 ? reason() : "";
    if (why.empty()) return balance;
    logger.error("The balance of {} cannot be read: {}", xuid, why);
    return {};
}
std::optional<std::vector<platform::llmoney::Record>> history(const std::string& xuid, std::int64_t since) {
    std::vector<platform::llmoney::Record> found;
    if (llmoneygethist.function == nullptr || !llmoneygethist.function(xuid, since, found)) return std::nullopt;
    return found;
}
moneyrefusal trans(const std::string& from, const std::string& to, std::int64_t value, const std::string& note) {
    return refusalof(llmoneytrans, from, to, value, note);
}
moneyrefusal reduce(const std::string& xuid, std::int64_t value) { return refusalof(llmoneyreduce, xuid, value); }
moneyrefusal add(const std::string& xuid, std::int64_t value) { return refusalof(llmoneyadd, xuid, value); }

}  // namespace ordomart::moneylibrary
