#pragma once
// Commands that carry themselves: each entry says where it sits in the menu,
// what it is called, when it can run and what it does. Feature folders add
// their entries to the registry; the main window builds its menu bar and
// toolbar from the registry alone and never looks at an id. An entry without
// a handler is a command whose work is not built yet: it is shown disabled.

#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStyle>

#include <functional>
#include <map>
#include <string_view>
#include <vector>

namespace tarvel {

// One entry of a submenu made when it opens (the recent car sets).
struct MenuEntry {
    QString text;
    std::function<void()> run;
};

struct Command {
    int id = 0;
    // Place in the menu bar: menus, submenus and entries appear in ascending order.
    int order = 0;
    std::string_view menu{};           // submenu path, "&File|&New"
    std::string_view text{};           // the entry's text
    bool separatorBefore = false;     // a line before the entry (or before the submenu it opens)
    std::function<void()> run{};       // empty: not built yet, shown disabled
    std::function<bool()> enabled{};   // empty: always enabled
    std::function<QString()> label{};  // a text that changes with the document (else `text`)
    std::function<bool()> available{}; // false: left out of the menu (empty: always there)
    int icon = -1;                    // a QStyle::StandardPixmap; an entry with an icon is on the toolbar
    QKeySequence::StandardKey key = QKeySequence::UnknownKey;  // the platform's own keys for it
    QKeySequence shortcut{};                                    // a key of its own, besides those
    // A submenu whose entries are made each time it opens; `text` names it.
    std::function<std::vector<MenuEntry>()> entries{};
};

class CommandRegistry {
public:
    void add(Command command);
    const Command* find(int id) const;
    // Every entry, in menu order.
    std::vector<const Command*> inMenuOrder() const;
    bool isEnabled(int id) const;
    // Runs the command when it is built and enabled; false otherwise.
    bool run(int id) const;

private:
    std::map<int, Command> commands_;
};

}  // namespace tarvel
