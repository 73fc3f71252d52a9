\c chinook;

CREATE FUNCTION last_updated() RETURNS TRIGGER LANGUAGE plpgsql AS $$
BEGIN
    NEW.last_update = CURRENT_TIMESTAMP;
    RETURN NEW;
END $$;

COMMENT
ON COLUMN dtb_customer.name01 IS '顧客名（姓）';

COMMENT
ON TABLE dtb_order IS 'これは「受注」のテーブルです。';
