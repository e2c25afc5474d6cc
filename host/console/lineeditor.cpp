#include "host/console/lineeditor.h"

#include <fmt/format.h>
#include <histedit.h>
#include <locale.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "host/console/ttyguard.h"
#include "host/console/typedlines.h"
#include "platform/utf8.h"

namespace host {

namespace {

constexpr std::string_view prompt = "> ";
constexpr std::size_t mostshown = 60;  // words of an offer

// libedit knows letters by the locale of its thread; names are UTF-8 whatever the rest of the system speaks.
struct Utf8 {
    locale_t own = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    locale_t former = own != nullptr ? ::uselocale(own) : nullptr;
    Utf8() = default;
    Utf8(const Utf8&) = delete;
    Utf8& operator=(const Utf8&) = delete;
    ~Utf8() {
        if (own == nullptr) return;
        ::uselocale(former);
        ::freelocale(own);
    }
};

struct Size {
    int columns = 80, rows = 24;
    bool operator==(const Size&) const = default;
};

Size windowsize(int terminal) {
    winsize told{};
    if (::ioctl(terminal, TIOCGWINSZ, &told) != 0 || told.ws_col == 0) return {};
    return {told.ws_col, told.ws_row};
}

// What all of them begin with.
std::string common(const std::vector<std::string>& words) {
    std::string text = words.front();
    for (const std::string& word : words)
        text.resize(static_cast<std::size_t>(std::ranges::mismatch(text, word).in1 - text.begin()));
    while (!text.empty() && !platform::isutf8(text)) text.pop_back();
    return text;
}

// In columns; without names that are cut at the end of a row.
std::string listed(const std::vector<std::string>& words, int columns) {
    std::size_t longest = 0;
    for (const std::string& word : words) longest = std::max(longest, word.size());
    const std::size_t across = std::max<std::size_t>(1, static_cast<std::size_t>(columns) / (longest + 2));
    std::string text;
    for (std::size_t i = 0; i < words.size() && i < mostshown; ++i)
        text += i % across + 1 == across ? words[i] + '\n' : fmt::format("{:<{}}", words[i], longest + 2);
    if (words.size() > mostshown)
        text += fmt::format("{}and {} more", text.ends_with('\n') ? "" : "\n", words.size() - mostshown);
    return text.ends_with('\n') ? text : text + '\n';
}

}  // namespace

struct LineEditor::Parts {
    explicit Parts(Place given)
        : place(std::move(given)),
          guard(place.input, place.wake),
          typed(place.typedlines),
          size(windowsize(place.input)) {
        drawn = ::fopencookie(this, "w", {nullptr, &Parts::draw, nullptr, nullptr});
        history = ::history_init();
        editor = drawn == nullptr || history == nullptr
                     ? nullptr
                     : ::el_init_fd("ordomart-server", stdin, drawn, drawn, place.input, place.input, place.input);
        if (editor == nullptr) throw std::runtime_error("the line editor cannot be started");
        ::el_set(editor, EL_CLIENTDATA, this);
        ::el_set(editor, EL_PROMPT, &Parts::prompted);
        ::el_set(editor, EL_EDITOR, "emacs");
        ::el_set(editor, EL_GETCFN, &Parts::getletter);
        ::el_set(editor, EL_ADDFN, "complete", "completes the word", &Parts::tab);
        ::el_set(editor, EL_BIND, "^I", "complete", nullptr);
        ::el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        ::el_set(editor, EL_BIND, "^W", "ed-delete-prev-word", nullptr);
        HistEvent event;
        ::history(history, &event, H_SETSIZE, static_cast<int>(TypedLines::mostlines));
        for (const std::string& line : typed.all()) ::history(history, &event, H_ENTER, line.c_str());
        ::el_set(editor, EL_HIST, &::history, history);
    }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;
    ~Parts() {
        if (editor != nullptr) ::el_end(editor);
        if (history != nullptr) ::history_end(history);
        if (drawn != nullptr) std::fclose(drawn);
    }

    static Parts& of(EditLine* editor) {
        void* parts = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &parts);
        return *static_cast<Parts*>(parts);
    }
    static char* prompted(EditLine*) {
        static std::string text(prompt);
        return text.data();
    }
    static ssize_t draw(void* parts, const char* bytes, std::size_t count) {
        static_cast<Parts*>(parts)->place.output.put({bytes, count});
        return static_cast<ssize_t>(count);
    }
    static int getletter(EditLine* editor, wchar_t* letter) { return of(editor).get(letter); }
    static unsigned char tab(EditLine* editor, int) { return of(editor).complete(); }

    int get(wchar_t* letter) {
        std::mbstate_t state{};
        for (;;) {
            std::array<pollfd, 2> waiting{pollfd{place.input, POLLIN, 0}, pollfd{place.wake, POLLIN, 0}};
            if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return 0;
            if (waiting[1].revents != 0) {
                std::uint64_t times = 0;
                [[maybe_unused]] const ssize_t got = ::read(place.wake, &times, sizeof times);
                if (over = place.isover(); over) return 0;
                wake();
                continue;
            }
            if (waiting[0].revents == 0) continue;
            char byte = 0;
            const ssize_t got = ::read(place.input, &byte, 1);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return 0;
            fit();
            const std::size_t used = ::mbrtowc(letter, &byte, 1, &state);
            if (used == static_cast<std::size_t>(-1)) state = {};
            if (used <= 1) return 1;
        }
    }

    void wake() {
        fit();
        if (TtyGuard::wenton() && TtyGuard::ours(place.input)) {
            // libedit takes the terminal to be as it has left it.
            ::el_set(editor, EL_PREP_TERM, 0);
            ::el_set(editor, EL_PREP_TERM, 1);
            above("");
        }
        if (const std::string news = place.output.takeaside(); !news.empty()) above(news);
    }
    // Whole lines, in the place of the typed line, which is drawn anew behind them.
    void above(const std::string& lines) {
        const int row = cursorrow();
        place.output.put(fmt::format("\r{}\x1b[J{}", row > 0 ? fmt::format("\x1b[{}A", row) : "", lines));
        ::el_set(editor, EL_REFRESH);
    }
    // How far below its first row the typed line has the cursor.
    [[nodiscard]] int cursorrow() const {
        const LineInfoW* const line = ::el_wline(editor);
        int row = 0, column = static_cast<int>(prompt.size());
        for (const wchar_t* at = line->buffer; at < line->cursor; ++at) {
            const int width = std::max(::wcwidth(*at), 0);
            if (column + width > size.columns) {
                ++row;
                column = 0;
            }
            column += width;
        }
        return column >= size.columns ? row + 1 : row;
    }
    // Looked at when there is something to draw instead of told by a signal, which would break other threads' waits.
    void fit() {
        const Size now = windowsize(place.input);
        if (now == size) return;
        size = now;
        ::el_resize(editor);
        above("");
    }

    unsigned char complete() {
        const LineInfo* const line = ::el_line(editor);
        Offer offer;
        try {
            offer = place.complete({line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)});
        } catch (const std::exception&) {
            // Through libedit nothing can be thrown; a server that does not answer offers nothing.
        }
        if (offer.words.empty()) return CC_REFRESH_BEEP;
        std::string rest = common(offer.words).substr(offer.begun.size());
        if (offer.words.size() == 1) rest += ' ';
        if (rest.empty())
            above(listed(offer.words, size.columns));
        else
            ::el_insertstr(editor, rest.c_str());
        return CC_REFRESH;
    }

    const Utf8 letters;
    Place place;
    TtyGuard guard;
    TypedLines typed;
    Size size;
    bool over = false;
    std::FILE* drawn = nullptr;
    History* history = nullptr;
    EditLine* editor = nullptr;
};

bool LineEditor::suits(int input, int output) {
    const char* const kind = std::getenv("TERM");
    return ::isatty(input) != 0 && ::isatty(output) != 0 && TtyGuard::ours(input) && kind != nullptr && *kind != '\0' &&
           std::string_view(kind) != "dumb";
}

LineEditor::LineEditor(Place place) : parts_(std::make_unique<Parts>(std::move(place))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::next() {
    Parts& parts = *parts_;
    Output& output = parts.place.output;
    output.setaside([wake = parts.place.wake] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t put = ::write(wake, &one, sizeof one);
    });
    // Before the prompt, not behind it as libedit does by itself: keys that come at once would be echoed twice.
    ::el_set(parts.editor, EL_PREP_TERM, 1);
    int count = 0;
    const char* const typed = ::el_gets(parts.editor, &count);
    const bool ended = typed == nullptr || count <= 0 || parts.over;
    if (ended) output.put("\n");  // whatever follows does not begin behind the prompt
    output.setaside({});
    if (ended) return std::nullopt;
    std::string line(typed, static_cast<std::size_t>(count));
    while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
    HistEvent event;
    if (!line.empty()) ::history(parts.history, &event, H_ENTER, line.c_str());
    if (const std::string problem = parts.typed.add(line); !problem.empty()) output.print(problem);
    return line;
}

}  // namespace host
