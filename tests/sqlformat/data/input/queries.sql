-- Pricing summary report
select
	l_returnflag,
	l_linestatus,
	sum(l_quantity) as sum_qty,
	sum(l_extendedprice * (1 - l_discount)) as sum_disc_price,
	avg(l_discount) as avg_disc,
	count(*) as count_order
from
	lineitem
where
	l_shipdate <= date '1998-12-01' - interval '90' day
group by
	l_returnflag,
	l_linestatus
order by
	l_returnflag,
	l_linestatus;

with customer_total_return as
(select sr_customer_sk as ctr_customer_sk, sr_store_sk as ctr_store_sk, sum(SR_FEE) as ctr_total_return
 from store_returns, date_dim
 where sr_returned_date_sk = d_date_sk and d_year = 2000
 group by sr_customer_sk, sr_store_sk)
select c_customer_id
from customer_total_return ctr1, store, customer
where ctr1.ctr_total_return > (select avg(ctr_total_return)*1.2 from customer_total_return ctr2 where ctr1.ctr_store_sk = ctr2.ctr_store_sk)
and s_store_sk = ctr1.ctr_store_sk
and s_state = 'TN'
order by c_customer_id
limit 100;

SELECT c.name, o.total, CASE WHEN o.total > 100 THEN 'big' WHEN o.total > 10 THEN 'mid' ELSE 'small' END AS size
FROM customer c LEFT OUTER JOIN orders o ON o.customer_id = c.id AND o.status <> 'void'
WHERE c.country IN ('DE', 'FR') OR c.vip = 1
UNION ALL
SELECT 'total', sum(total), NULL FROM orders;
