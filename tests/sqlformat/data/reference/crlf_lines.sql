SELECT a,
    b
    -- first

FROM t
WHERE a = 1;

SELECT 2;
