SELECT 'é' AS marked,
    'x'
FROM t;

SELECT a
FROM t
WHERE b = 'unterminated;
  and c = 1

