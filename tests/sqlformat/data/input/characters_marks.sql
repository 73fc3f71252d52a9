select x'́, y from t;
select a,́ b from t;
select
́x from t;
select ؀(1) from t;
