#include "sqlformatter.h"
#include "sqlformatterstatement.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class TestSqlFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatSQL_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &input, const QString &expected) {
            QTest::newRow(name) << input << expected;
        };
        row("empty", u""_s, u""_s);
        row("blanks and line feeds", u"  \n\t\n  "_s, u""_s);
        row("select list and logic", u"select a, b from t where x = 1 and y = 2 order by a;"_s,
            u"SELECT a,\n    b\nFROM t\nWHERE x = 1\n    AND y = 2\nORDER BY a;"_s);
        row("aggregates and tail",
            u"select count(*), sum(x) from t group by a, b having count(*) > 1 limit 10"_s,
            u"SELECT COUNT(*),\n    sum(x)\nFROM t\nGROUP BY a, b\nHAVING COUNT(*) > 1\nLIMIT 10"_s);
        row("left join", u"select a from t left join u on t.id = u.id"_s,
            u"SELECT a\nFROM t\n    LEFT\n    JOIN u\n    ON t.id = u.id"_s);
        row("inner join and where", u"select a from t inner join u on a = b and c = d where e = 1"_s,
            u"SELECT a\nFROM t\n    INNER\n    JOIN u\n    ON a = b\n    AND c = d\nWHERE e = 1"_s);
        row("insert", u"insert into t (a, b) values (1, 2);"_s, u"INSERT INTO t(a, b)\nVALUES(1, 2);"_s);
        row("update", u"update t set a = 1, b = 2 where id = 3;"_s,
            u"UPDATE t\nSET a = 1, b = 2\nWHERE id = 3;"_s);
        row("delete", u"delete from t where id=1;"_s, u"DELETE\nFROM t\nWHERE id=1;"_s);
        row("create table", u"create table t (id int primary key, name text not null);"_s,
            u"CREATE TABLE t(id int PRIMARY KEY, name text NOT NULL);"_s);
        row("union", u"select a from t union select b from u"_s,
            u"SELECT a\nFROM t\n    UNION\n    SELECT b\nFROM u"_s);
        row("brackets in select list", u"select a, (b + 1), c from t"_s,
            u"SELECT a,(b + 1),\n    c\nFROM t"_s);
        row("subquery", u"select (select max(x) from u) as m, y from t"_s,
            u"SELECT(SELECT MAX(x) FROM u) AS m,\n    y\nFROM t"_s);
        row("distinct and brackets", u"select distinct a from t where (a = 1 or b = 2) and c = 3"_s,
            u"SELECT DISTINCT a\nFROM t\nWHERE(a = 1 OR b = 2)\n    AND c = 3"_s);
        row("laid out by hand",
            u"select a,\n       b\n  from t\n where a in (1,2,3)\n   and b between 1 and 2"_s,
            u"SELECT a,\n    b\nFROM t\nWHERE a IN(1, 2, 3)\n    AND b BETWEEN 1\n    AND 2"_s);
        row("case", u"SELECT CASE WHEN a = 1 THEN 'x' ELSE 'y' END AS k, b FROM t"_s,
            u"SELECT CASE WHEN a = 1 THEN 'x' ELSE 'y' END AS k,\n    b\nFROM t"_s);
        row("with", u"with x as (select 1) select * from x"_s, u"with x AS(SELECT 1)\nSELECT *\nFROM x"_s);
        row("truncate", u"truncate table t;"_s, u"TRUNCATE TABLE t;"_s);
        row("use and drop", u"use db; drop table t"_s, u"USE db;\n\nDROP TABLE t"_s);
        row("two statements", u"select 1; select 2;"_s, u"SELECT 1;\n\nSELECT 2;"_s);
        row("leading comments", u"-- head\nselect 1;\n\n\n-- next\nselect 2"_s,
            u"-- head\nSELECT 1;\n\n-- next\nSELECT 2"_s);
        row("comment behind ;", u"SELECT 1; -- done\nSELECT 2;"_s, u"SELECT 1;\n\n-- done\nSELECT 2;"_s);
        row("comments only", u"-- only a comment\n\n-- and another"_s,
            u"-- only a comment\n\n-- and another"_s);
        row("comment then clause", u"-- c\nfrom t"_s, u"-- c\n\nFROM t"_s);
        row("semicolons", u";;"_s, u";\n\n;"_s);

        // Quoted text goes through flattening as written.
        row("doubled quotes",
            u"INSERT INTO Track (TrackId, Name) VALUES (1, 'It''s a Long Way to the Top (If You Wanna Rock ''n'' Roll)');"_s,
            u"INSERT INTO Track(TrackId, Name)\nVALUES(1, 'It''s a Long Way to the Top (If You Wanna Rock ''n'' Roll)');"_s);
        row("commas, blanks, brackets in strings", u"insert into t values ('a,b', 'x  y', ' ( ) ', 'a ;');"_s,
            u"INSERT INTO t\nVALUES('a,b', 'x  y', ' ( ) ', 'a ;');"_s);
        row("line feed and tab in a string", u"update t set note = 'line one\n\tline two' where id = 1"_s,
            u"UPDATE t\nSET note = 'line one\n\tline two'\nWHERE id = 1"_s);
        row("; and -- in strings",
            u"insert into sys_config values (1, 'skin-blue;skin-green', 'a -- b');select 2"_s,
            u"INSERT INTO sys_config\nVALUES(1, 'skin-blue;skin-green', 'a -- b');\n\nSELECT 2"_s);
        row("quoted names", u"select \"Order Date\", \"it\"\"s\" from \"My  Table\""_s,
            u"SELECT \"Order Date\",\n    \"it\"\"s\"\nFROM \"My  Table\""_s);
        row("cjk strings and comment",
            u"-- 创建用户表\nCREATE TABLE users (name varchar(20) COMMENT '用户名, 唯一  ', kana text COMMENT 'ふりがな（全角）');"_s,
            u"-- 创建用户表\nCREATE TABLE users(name varchar(20) COMMENT '用户名, 唯一  ', kana text COMMENT 'ふりがな（全角）');"_s);

        // A comment behind code ends at its line feed; the code behind it stays code.
        row("comment behind code", u"select a -- note\nfrom t"_s, u"SELECT a\n    -- note\n\nFROM t"_s);
        row("comment in a select list", u"select id, -- 主键\n       name\n  from users;"_s,
            u"SELECT id,\n    -- 主键\nname\nFROM users;"_s);
        row("comment with a quote", u"select a -- it's\n, b from t where c = 'x'"_s,
            u"SELECT a\n    -- it's\n,\n    b\nFROM t\nWHERE c = 'x'"_s);
        row("cr lf is no line feed", u"select a -- x\r\nfrom t;\r\nselect 2;"_s,
            u"SELECT a\n    -- x\r\nfrom t;\r\nselect 2;"_s);
        row("cr lf flattened", u"select a,\r\n  b\r\nfrom t;\r\n"_s, u"SELECT a,\n    b\nFROM t;"_s);

        // Characters are user-perceived: a mark on a quote, comma or ";" makes it part of a word.
        row("mark on a quote", u"select x'\u0301, y from t"_s, u"SELECT x'\u0301,\n    y\nFROM t"_s);
        row("mark on a comma", u"select a,\u0301 b from t"_s, u"SELECT a,\u0301 b\nFROM t"_s);
        row("mark on a semicolon", u"select 1;\u0301 select 2"_s, u"SELECT 1;\u0301\n    SELECT 2"_s);
        row("mark after a line feed", u"select\n\u0301x from t"_s, u"select \u0301x\nFROM t"_s);
        row("accented word", u"sélect 1"_s, u"sélect 1"_s);
        row("long s in capitals", u"ſelect 1"_s, u"SELECT 1"_s);
        row("ideographic space", u"select\u3000a from t"_s, u"SELECT a\nFROM t"_s);
        row("emoji", u"select '😀' as e, b👍 from t"_s, u"SELECT '😀' AS e,\n    b👍\nFROM t"_s);
        row("unterminated quote", u"select 'abc;\nfrom t  "_s, u"SELECT 'abc;\nfrom t"_s);
    }
    void formatSQL()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        QCOMPARE(::formatSQL(input), expected);
        for (const QString &statement : ::splitStatements(input)) {
            QString literal;
            appendFormattedStatement(statement, literal, SqlFlattening::Literal);
            QCOMPARE(formatStatement(statement), literal);
        }
    }

    void splitStatements_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("trailing blank dropped") << u"a; b ;\n  "_s << QStringList{u"a;"_s, u" b ;"_s};
        QTest::newRow("last kept untrimmed") << u"a;\n b \n"_s << QStringList{u"a;"_s, u"\n b \n"_s};
        QTest::newRow("; in quotes") << u"select ';', \"a;b\";x"_s
                                     << QStringList{u"select ';', \"a;b\";"_s, u"x"_s};
        QTest::newRow("other quote inside")
            << u"select \"it's;\"; 'a\"b;'"_s << QStringList{u"select \"it's;\";"_s, u" 'a\"b;'"_s};
        QTest::newRow("doubled quote")
            << u"select 'it''s;';x"_s << QStringList{u"select 'it''s;';"_s, u"x"_s};
        QTest::newRow("comment with ; and quote") << u"a -- x; 'y\nb;"_s << QStringList{u"a -- x; 'y\nb;"_s};
        QTest::newRow("comment through cr lf")
            << u"a; -- x\r\nb; c;"_s << QStringList{u"a;"_s, u" -- x\r\nb; c;"_s};
        QTest::newRow("unterminated quote") << u"a 'b; c"_s << QStringList{u"a 'b; c"_s};
        QTest::newRow("backslash is ordinary") << u"'a\\';b"_s << QStringList{u"'a\\';"_s, u"b"_s};
    }
    void splitStatements()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, expected);
        QCOMPARE(::splitStatements(input), expected);
    }

    void tokenizeSQL_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("doubled quote is one token")
            << u"'it''s' 'a' 'b'"_s << QStringList{u"'it''s'"_s, u"'a'"_s, u"'b'"_s};
        QTest::newRow("quote ends a word") << u"N'x'y"_s << QStringList{u"N"_s, u"'x'"_s, u"y"_s};
        QTest::newRow("-- ends a word") << u"a--b c\nd"_s << QStringList{u"a"_s, u"--b c"_s, u"d"_s};
        QTest::newRow("punctuation") << u"f(a,b);"_s
                                     << QStringList{u"f"_s, u"("_s, u"a"_s, u","_s, u"b"_s, u")"_s, u";"_s};
        QTest::newRow("operators are words")
            << u"id=1 and x <> -1"_s << QStringList{u"id=1"_s, u"and"_s, u"x"_s, u"<>"_s, u"-1"_s};
        QTest::newRow("comment to cr lf end") << u"-- a\r\nb\nc"_s << QStringList{u"-- a\r\nb"_s, u"c"_s};
        QTest::newRow("unterminated quote") << u"x 'a b"_s << QStringList{u"x"_s, u"'a b"_s};
    }
    void tokenizeSQL()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, expected);
        QCOMPARE(::tokenizeSQL(input), expected);
    }

    // Real SQL: every statement keeps its tokens through formatting (keywords may change case),
    // every quoted string as SQL reads it (with doubled quotes) comes out byte for byte and in
    // order, and the statements add up to the text.
    void corpusKeepsMeaning_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *name : {"sql-100k.sql", "sql-1m.sql", "sql-10m.sql"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void corpusKeepsMeaning()
    {
        QFETCH(QString, file);
        QFile corpus(QStringLiteral(VARNHOLT_BENCH_CORPUS "/") + file);
        QVERIFY2(corpus.open(QIODevice::ReadOnly), qPrintable(corpus.fileName()));
        const QString text = QString::fromUtf8(corpus.readAll());
        const QStringList statements = ::splitStatements(text);
        QVERIFY(text.startsWith(statements.join(QString())));
        qsizetype trickyStrings = 0;
        for (const QString &statement : statements) {
            const QString formatted = formatStatement(statement);
            const QStringList before = ::tokenizeSQL(statement);
            const QStringList after = ::tokenizeSQL(formatted);
            QCOMPARE(after.size(), before.size());
            for (qsizetype k = 0; k + 1 < before.size(); ++k) {
                if (after[k].compare(before[k], Qt::CaseInsensitive) != 0)
                    QFAIL(qPrintable(u"%1 became %2 in: %3"_s.arg(before[k], after[k], statement.left(200))));
            }
            qsizetype from = 0;
            for (const QString &quoted : quotedStrings(statement)) {
                from = formatted.indexOf(quoted, from);
                QVERIFY2(from >= 0, qPrintable(quoted));
                trickyStrings += quoted.contains(u';') || quoted.contains(u"--") || quoted.contains(u"''");
            }
        }
        QVERIFY(trickyStrings > 0);
    }

private:
    // Closed quoted strings as SQL reads them, found without the formatter's tokenizer.
    static QStringList quotedStrings(const QString &statement)
    {
        QStringList strings;
        for (qsizetype i = 0; i < statement.size(); ++i) {
            if (statement.mid(i, 2) == u"--") {
                i = statement.indexOf(u'\n', i);
                if (i < 0)
                    break;
            } else if (statement[i] == u'\'' || statement[i] == u'"') {
                qsizetype end = i + 1;
                while (end < statement.size() &&
                       (statement[end] != statement[i] || statement.mid(end + 1, 1) == statement[i]))
                    end += statement[end] == statement[i] ? 2 : 1;
                if (end < statement.size())
                    strings.append(statement.mid(i, end + 1 - i));
                i = end;
            }
        }
        return strings;
    }
};

QTEST_GUILESS_MAIN(TestSqlFormatter)
#include "tst_sqlformatter.moc"
