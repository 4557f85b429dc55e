// File extensions in the one form every table uses, and the text-file test.
#include "common/TestEnv.h"

#include "base/text/FileType.h"

#include <QtTest>

class TestFileType : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void extensions() {
        using tav::getFileExtension;
        QCOMPARE(getFileExtension(QStringLiteral("main.cpp"), true), QStringLiteral("cpp"));
        QCOMPARE(getFileExtension(QStringLiteral("main.cpp"), false), QStringLiteral(".cpp"));
        QCOMPARE(getFileExtension(QStringLiteral("Photo.JPG"), true), QStringLiteral("JPG"));   // case kept
        QCOMPARE(getFileExtension(QStringLiteral("archive.tar.gz"), true), QStringLiteral("gz"));
        QCOMPARE(getFileExtension(QStringLiteral("/a.b/Makefile"), true), QString());   // dot in a folder name
        QCOMPARE(getFileExtension(QStringLiteral(".bashrc"), true), QString());
        QCOMPARE(getFileExtension(QStringLiteral("dir/.hidden"), true), QString());
        QCOMPARE(getFileExtension(QStringLiteral("trailing."), true), QString());
        QCOMPARE(getFileExtension(QStringLiteral(".config.json"), true), QStringLiteral("json"));
        QCOMPARE(getFileExtension(QString(), true), QString());
    }

    void textFiles() {
        tftest::TestDir d;
        QByteArray controls(200, 'a');
        for (int i = 0; i < 40; ++i) controls[i * 5] = '\x02';
        QVERIFY(tav::is_text_file(QFileInfo(d.file("a.txt", "plain text\nwith lines\r\n\tand tabs"))));
        QVERIFY(tav::is_text_file(QFileInfo(d.file("empty"))));
        QVERIFY(tav::is_text_file(QFileInfo(d.file("latin1", "caf\xe9 cr\xe8me\n"))));   // not UTF-8, still text
        QVERIFY(tav::is_text_file(QFileInfo(d.file("ansi.log", "\x1b[31mred\x1b[0m\n"))));
        QVERIFY(!tav::is_text_file(QFileInfo(d.file("nul.bin", QByteArray("abc\0def", 7)))));
        QVERIFY(!tav::is_text_file(QFileInfo(d.file("utf16", QByteArray("\xff\xfeh\0i\0", 6)))));
        QVERIFY(!tav::is_text_file(QFileInfo(d.file("controls", controls))));
        // A NUL after the first 64 KiB is not looked at.
        QByteArray late(tav::kTextSniffBytes + 10, 'x');
        late[tav::kTextSniffBytes + 5] = '\0';
        QVERIFY(tav::is_text_file(QFileInfo(d.file("late", late))));
        QVERIFY(!tav::is_text_file(QFileInfo(d.path())));
        QVERIFY(!tav::is_text_file(QFileInfo(d.abs("missing.txt"))));
    }
};

QTEST_GUILESS_MAIN(TestFileType)
#include "test_filetype.moc"
