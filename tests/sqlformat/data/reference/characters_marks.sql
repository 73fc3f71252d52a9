SELECT x'́,
    y
FROM t;

SELECT a,́ b
FROM t;

select ́x
FROM t;

SELECT ؀(1)
FROM t;
