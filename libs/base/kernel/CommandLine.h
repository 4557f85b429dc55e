#pragma once
// Command line of a command: "talvofinder <command> --key value --key value".
#include <QHash>
#include <QString>
#include <QStringList>

namespace tav {

class CommandLine {
public:
    CommandLine() = default;
    // 'args' are the words after the command name.
    explicit CommandLine(const QStringList& args);

    // Comma-separated key lists ("file,treat"); a "=what" after a key is ignored here.
    void addMustHaveKeys(const QString& keys);
    void addOptionalKeys(const QString& keys);
    // False (with a level-4 log line) when a mandatory key is missing or empty,
    // a word is not of the form --key value, or a key is not declared (once keys are declared).
    bool checkKeys() const;
    QString lastError() const { return error_; }

    bool hasKey(const QString& key) const { return values_.contains(key); }
    QString getString(const QString& key, const QString& def = QString()) const;
    // As getString, with "$(NAME)" environment references replaced.
    QString getStringExt(const QString& key, const QString& def = QString()) const;
    unsigned getUInt(const QString& key, unsigned def) const;
    bool getBool(const QString& key, bool def) const;
    const QStringList& args() const { return args_; }

    // Prints usage lines to standard output.
    void showExample(const QStringList& lines) const;
    void showExample(const QString& line) const { showExample(QStringList{line}); }

private:
    QStringList args_;
    QHash<QString, QString> values_;
    QStringList mustHave_;
    QStringList optional_;
    bool malformed_ = false;
    mutable QString error_;
};

} // namespace tav
