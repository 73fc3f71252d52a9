#include "sqlformatter.h"
#include "sqlformatterstatement.h"

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
        // A text with CR LF line ends keeps them, and its comments end before them.
        row("cr lf comment", u"select a -- x\r\nfrom t;\r\nselect 2;"_s,
            u"SELECT a\r\n    -- x\r\n\r\nFROM t;\r\n\r\nSELECT 2;"_s);
        row("cr lf flattened", u"select a,\r\n  b\r\nfrom t;\r\n"_s, u"SELECT a,\r\n    b\r\nFROM t;"_s);

        // Punctuation is read by user-perceived characters: a mark on a comma or ";" makes it part
        // of a word. A quote is a quote to every database, mark or not.
        row("mark on a quote", u"select x'\u0301, y from t"_s, u"SELECT x'\u0301, y from t"_s);
        row("mark on a comma", u"select a,\u0301 b from t"_s, u"SELECT a,\u0301 b\nFROM t"_s);
        row("mark on a semicolon", u"select 1;\u0301 select 2"_s, u"SELECT 1;\u0301\n    SELECT 2"_s);
        row("mark after a line feed", u"select\n\u0301x from t"_s, u"select \u0301x\nFROM t"_s);
        row("accented word", u"sélect 1"_s, u"sélect 1"_s);
        row("long s in capitals", u"ſelect 1"_s, u"SELECT 1"_s);
        row("ideographic space", u"select\u3000a from t"_s, u"SELECT a\nFROM t"_s);
        row("emoji", u"select '😀' as e, b👍 from t"_s, u"SELECT '😀' AS e,\n    b👍\nFROM t"_s);
        // What an unterminated string holds is kept to the end, blanks too.
        row("unterminated quote", u"select 'abc;\nfrom t  "_s, u"SELECT 'abc;\nfrom t  "_s);

        // Other dialects: every string, quoted name and comment comes out byte for byte.
        row("prefixed strings",
            u"select N'AC/DC', E'a\\\\', X'0F', U&'d\\0061t', _utf8'x', q'[a;b]' from t"_s,
            u"SELECT N'AC/DC',\n    E'a\\\\',\n    X'0F',\n    U&'d\\0061t',\n    _utf8'x',\n    q'[a;b]'\nFROM t"_s);
        // Read with backslash escapes (MySQL, E'' in PostgreSQL) the string ends later than read
        // without (everywhere else); from there on no reading can be trusted, and the text stays
        // as written.
        row("backslash before a quote", u"select E'it\\'s', 1 from t"_s, u"SELECT E'it\\'s', 1 from t"_s);
        row("block comment with a quote", u"select a /* it's */, b from t where c = 'x'"_s,
            u"SELECT a /* it's */,\n    b\nFROM t\nWHERE c = 'x'"_s);
        row("dollar body",
            u"create function f() returns int as $$ select 1;  select 2; $$ language sql; select 3"_s,
            u"CREATE FUNCTION f() returns int AS $$ select 1;  select 2; $$ language sql;\n\nSELECT 3"_s);
        row("mysql escapes and hash comment",
            u"insert into t values ('a\\\\', '\\\\'); # from where\nselect 1"_s,
            u"INSERT INTO t\nVALUES('a\\\\', '\\\\');\n\n# from where\nSELECT 1"_s);
        row("version comment", u"/*!40101 SET NAMES utf8 */;"_s, u"/*!40101 SET NAMES utf8 */;"_s);
        row("go stays on its line", u"select 1\nGO\nselect 2"_s, u"SELECT 1\nGO\n\nSELECT 2"_s);
        row("copy data as written", u"copy t (a, b) from stdin;\n1\t it's  \n\\.\nselect 1"_s,
            u"copy t(a, b)\nFROM stdin;\n1\t it's  \n\\.\n\nSELECT 1"_s);
        // A keyword that stands as a name keeps its case: result columns are named as written.
        row("keywords as names", u"select count (*) as n, a as count, max, max(b) as if from t as key"_s,
            u"SELECT COUNT(*) AS n,\n    a AS count,\n    max,\n    max(b) AS if\nFROM t AS key"_s);
        row("as before a statement", u"create view v as select 1"_s, u"CREATE view v AS\nSELECT 1"_s);
    }
    void formatSQL()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        QCOMPARE(::formatSQL(input), expected);
        for (const SqlPiece &piece : sqlPieces(input)) {
            QString automatic;
            QString literal;
            appendFormattedStatement(piece.text, automatic, SqlFlattening::Automatic, piece.options);
            appendFormattedStatement(piece.text, literal, SqlFlattening::Literal, piece.options);
            QCOMPARE(automatic, literal);
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
            << u"a; -- x\r\nb; c;"_s << QStringList{u"a;"_s, u" -- x\r\nb;"_s, u" c;"_s};
        QTest::newRow("unterminated quote") << u"a 'b; c"_s << QStringList{u"a 'b; c"_s};
        // Where dialects read differently, nothing splits that any of them reads as quoted.
        QTest::newRow("backslash escape") << u"'a\\';b"_s << QStringList{u"'a\\';b"_s};
        QTest::newRow("dollar body") << u"create function f() as $f$ select 1; $f$; x"_s
                                     << QStringList{u"create function f() as $f$ select 1; $f$;"_s, u" x"_s};
        QTest::newRow("nested block comment")
            << u"a /* /* */ ; */; b"_s << QStringList{u"a /* /* */ ; */;"_s, u" b"_s};
        QTest::newRow("names in brackets and backticks")
            << u"select [a;b], `c;d`; e"_s << QStringList{u"select [a;b], `c;d`;"_s, u" e"_s};
        QTest::newRow("hash comment") << u"a # x;\nb; c"_s << QStringList{u"a # x;\nb;"_s, u" c"_s};
        QTest::newRow("oracle alternative quote")
            << u"select q'[a;b]' from dual; x"_s << QStringList{u"select q'[a;b]' from dual;"_s, u" x"_s};
        // Client lines stand alone, wherever a line in code begins.
        QTest::newRow("go") << u"select 1\nGO\nselect 2\n  go 3  \n"_s
                            << QStringList{u"select 1\n"_s, u"GO"_s, u"select 2\n"_s, u"go 3"_s};
        QTest::newRow("delimiter")
            << u"DELIMITER $$\ncreate procedure p() begin select 1; select 2; end$$\nDELIMITER ;\nselect $$;"_s
            << QStringList{u"DELIMITER $$"_s, u"create procedure p() begin select 1; select 2; end$$"_s,
                           u"DELIMITER ;"_s, u"select $$;"_s};
        QTest::newRow("psql copy data")
            << u"\\connect db\ncopy t (a) from stdin;\n1\t'x;\n\\.\nselect 1;"_s
            << QStringList{u"\\connect db"_s, u"copy t (a) from stdin;"_s, u"1\t'x;\n\\."_s, u"select 1;"_s};
        QTest::newRow("sql*plus block")
            << u"rem setup\ncreate or replace procedure p as begin null; end;\n/\nselect 1 from dual;"_s
            << QStringList{u"rem setup"_s, u"create or replace procedure p as begin null; end;\n"_s, u"/"_s,
                           u"select 1 from dual;"_s};
        QTest::newRow("blocks split without slash lines")
            << u"begin; select 1; commit;"_s << QStringList{u"begin;"_s, u" select 1;"_s, u" commit;"_s};
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
        QTest::newRow("prefix stays on its quote")
            << u"N'x'y E'a' _utf8'c' a[1]"_s << QStringList{u"N'x'y"_s, u"E'a'"_s, u"_utf8'c'"_s, u"a[1]"_s};
        QTest::newRow("block comment in a word")
            << u"a/* x, y */b c"_s << QStringList{u"a/* x, y */b"_s, u"c"_s};
        QTest::newRow("-- ends a word") << u"a--b c\nd"_s << QStringList{u"a"_s, u"--b c"_s, u"d"_s};
        QTest::newRow("punctuation") << u"f(a,b);"_s
                                     << QStringList{u"f"_s, u"("_s, u"a"_s, u","_s, u"b"_s, u")"_s, u";"_s};
        QTest::newRow("operators are words")
            << u"id=1 and x <> -1"_s << QStringList{u"id=1"_s, u"and"_s, u"x"_s, u"<>"_s, u"-1"_s};
        QTest::newRow("comment to cr lf end") << u"-- a\r\nb\nc"_s << QStringList{u"-- a"_s, u"b"_s, u"c"_s};
        QTest::newRow("unterminated quote") << u"x 'a b"_s << QStringList{u"x"_s, u"'a b"_s};
    }
    void tokenizeSQL()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, expected);
        QCOMPARE(::tokenizeSQL(input), expected);
    }
};

QTEST_GUILESS_MAIN(TestSqlFormatter)
#include "tst_sqlformatter.moc"
