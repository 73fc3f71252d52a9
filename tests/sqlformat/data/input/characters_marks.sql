select a,́ b from t;
select
́x from t;
select ؀(1) from t;
-- A quote with a mark on it is still a quote to the database: the rest is its string.
select x'́, y from t;
