SELECT a,
       b -- first
FROM t
WHERE a = 1;

select 2;
