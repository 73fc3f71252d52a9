select 'naïve café' as word, 'e' || 'é' as decomposed from t;
select a,　b from t;
select '😀👍🏽', "名前" from users where 名前 = '山田　太郎';
SELECT 'Ünïcödé ❤', x FROM t WHERE y ='Ελληνικά' AND z = 'русский';
