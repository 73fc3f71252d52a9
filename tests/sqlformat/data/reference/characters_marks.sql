SELECT a,́ b
FROM t;

select ́x
FROM t;

SELECT ؀(1)
FROM t;

-- A quote with a mark on it is still a quote to the database: the rest is its string.
SELECT x'́, y from t;

