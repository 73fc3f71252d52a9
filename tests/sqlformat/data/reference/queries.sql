-- Pricing summary report
SELECT l_returnflag,
    l_linestatus,
    sum(l_quantity) AS sum_qty,
    sum(l_extendedprice *(1 - l_discount)) AS sum_disc_price,
    avg(l_discount) AS avg_disc,
    count(*) AS count_order
FROM lineitem
WHERE l_shipdate <= date '1998-12-01' - interval '90' day
GROUP BY l_returnflag, l_linestatus
ORDER BY l_returnflag, l_linestatus;

with customer_total_return AS(SELECT sr_customer_sk AS ctr_customer_sk, sr_store_sk AS ctr_store_sk, SUM(SR_FEE) AS ctr_total_return FROM store_returns, date_dim WHERE sr_returned_date_sk = d_date_sk AND d_year = 2000 GROUP BY sr_customer_sk, sr_store_sk)
SELECT c_customer_id
FROM customer_total_return ctr1, store, customer
WHERE ctr1.ctr_total_return >(SELECT AVG(ctr_total_return) *1.2 FROM customer_total_return ctr2 WHERE ctr1.ctr_store_sk = ctr2.ctr_store_sk)
    AND s_store_sk = ctr1.ctr_store_sk
    AND s_state = 'TN'
ORDER BY c_customer_id
LIMIT 100;

SELECT c.name,
    o.total,
    CASE WHEN o.total > 100 THEN 'big' WHEN o.total > 10 THEN 'mid' ELSE 'small' END AS size
FROM customer c
    LEFT
    OUTER
    JOIN orders o
    ON o.customer_id = c.id
    AND o.status <> 'void'
WHERE c.country IN('DE', 'FR')
    OR c.vip = 1
    UNION ALL
    SELECT 'total',
    sum(total),
    NULL
FROM orders;
