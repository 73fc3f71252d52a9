select 'é' as marked, 'x' from t;
select a from t where b = 'unterminated;
  and c = 1
