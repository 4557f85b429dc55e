#include "base/kernel/CompletionScript.h"

#include "base/kernel/CommandRegistry.h"
#include "base/log/Logger.h"

#include <QRegularExpression>
#include <QStringList>

namespace tav {

namespace {

// Words go into the script between single quotes and into case patterns:
// anything but these characters would need escaping, and no command uses it.
bool plainWord(const QString& w) {
    static const QRegularExpression re(QStringLiteral("^[A-Za-z0-9_.+-]+$"));
    return re.match(w).hasMatch();
}

struct Key {
    QString name;
    QString hint;   // "folder", "file", choices split by '|', or empty: free text
};

QList<Key> keysOf(const CommandEntry& e) {
    QList<Key> out;
    for (const QString& list : {e.keys.must, e.keys.optional}) {
        for (const QString& spec : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            Key k{spec.section(QLatin1Char('='), 0, 0).trimmed(), spec.section(QLatin1Char('='), 1).trimmed()};
            if (!plainWord(k.name)) {
                log(tav::LOG_ERROR, "bashCompletionScript, key '$' of '$' left out", k.name, e.name);
                continue;
            }
            out << k;
        }
    }
    return out;
}

QString lines(const QStringList& words) { return QLatin1Char('\'') + words.join(QLatin1Char('\n')) + QLatin1Char('\''); }

} // namespace

QString bashCompletionScript(const QString& program, const QString& alsoFor, const QString& defaultCommand) {
    QString fn = QLatin1Char('_') + program;
    fn.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_]")), QStringLiteral("_"));
    QStringList names, userNames{QStringLiteral("help")};
    QString keyCases, valueCases;
    for (const CommandEntry& e : CommandRegistry::all()) {
        if (e.placeholder || !plainWord(e.name)) continue;
        names << e.name;
        if (e.keys.forUsers) userNames << e.name;
        QStringList keyWords;
        for (const Key& k : keysOf(e)) {
            keyWords << QStringLiteral("--") + k.name;
            if (k.hint.isEmpty()) continue;
            const QString pattern = QStringLiteral("        '%1 --%2')").arg(e.name, k.name);
            if (k.hint == QLatin1String("folder") || k.hint == QLatin1String("file")) {
                valueCases += pattern + QStringLiteral(" compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -%1 -- \"$cur\")); return 0 ;;\n")
                                            .arg(k.hint == QLatin1String("folder") ? QLatin1Char('d') : QLatin1Char('f'));
                continue;
            }
            QStringList choices;
            for (const QString& c : k.hint.split(QLatin1Char('|'), Qt::SkipEmptyParts))
                if (plainWord(c)) choices << c;
            valueCases += pattern + QStringLiteral(" COMPREPLY=($(compgen -W %1 -- \"$cur\")); return 0 ;;\n").arg(lines(choices));
        }
        if (!keyWords.isEmpty()) keyCases += QStringLiteral("        %1) keys=%2 ;;\n").arg(e.name, lines(keyWords));
    }
    names.removeDuplicates();
    userNames.removeDuplicates();

    QString s;
    s += QStringLiteral("# bash completion for %1, made by \"%1 completion\" from the program's own commands.\n").arg(program);
    s += fn + QStringLiteral("()\n{\n");
    s += QStringLiteral(
        "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    local IFS=$'\\n'\n"
        "    if [[ $COMP_CWORD -eq 1 && $cur != -* ]]; then\n"
        "        # A path instead of a command opens the finder there.\n"
        "        case $cur in\n"
        "            */*|.*) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- \"$cur\")) ;;\n"
        "            *) COMPREPLY=($(compgen -W %3 -- \"$cur\"))\n"
        "               [[ ${#COMPREPLY[@]} -eq 0 ]] && COMPREPLY=($(compgen -W %1 -- \"$cur\")) ;;\n"
        "        esac\n"
        "        return 0\n"
        "    fi\n"
        "    local cmd=${COMP_WORDS[1]} keys= w i\n"
        "    [[ $cmd == -* ]] && cmd=%2\n"
        "    case $cmd in\n").arg(lines(names), defaultCommand, lines(userNames));
    s += keyCases;
    s += QStringLiteral(
        "    esac\n"
        "    if [[ $prev == --* && $cur != -* ]]; then\n"
        "        case \"$cmd $prev\" in\n");
    s += valueCases;
    s += QStringLiteral(
        "        esac\n"
        "        # The value of a key is free text: nothing to offer.\n"
        "        [[ $'\\n'$keys$'\\n' == *$'\\n'$prev$'\\n'* ]] && return 0\n"
        "    fi\n"
        "    # Keys given already are not offered again.\n"
        "    local left=\n"
        "    for w in $keys; do\n"
        "        for ((i = 1; i < COMP_CWORD; i++)); do [[ ${COMP_WORDS[i]} == \"$w\" ]] && continue 2; done\n"
        "        left+=$w$'\\n'\n"
        "    done\n"
        "    COMPREPLY=($(compgen -W \"$left\" -- \"$cur\"))\n"
        "}\n");
    s += QStringLiteral("complete -F %1 %2%3\n").arg(fn, program, alsoFor.isEmpty() ? QString() : QLatin1Char(' ') + alsoFor);
    return s;
}

} // namespace tav
