SELECT 'naïve café' AS word,
    'e' || 'é' AS decomposed
FROM t;

SELECT a,
    b
FROM t;

SELECT '😀👍🏽',
    "名前"
FROM users
WHERE 名前 = '山田　太郎';

SELECT 'Ünïcödé ❤',
    x
FROM t
WHERE y ='Ελληνικά'
    AND z = 'русский';
