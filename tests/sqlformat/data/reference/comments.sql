-- Sakila sample: a view and its comments

-- Keep the blank line above.
CREATE VIEW customer_list AS
SELECT cu.customer_id AS ID,
    -- the key
CONCAT(cu.first_name, _utf8' ', cu.last_name) AS name,
    -- it's not "a;b"
a.address AS address
FROM customer AS cu
    JOIN address AS a
    ON cu.address_id = a.address_id;

-- trailing note
SELECT 1;

-- done
SELECT 2
    -- no semicolon after this one
;

-- only comments from here on
--
--   and an indented one
