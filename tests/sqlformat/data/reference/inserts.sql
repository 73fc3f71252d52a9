INSERT INTO `Artist`(`ArtistId`, `Name`)
VALUES(1, N'AC/DC'),(2, N'Accept'),(3, 'Guns N'' Roses');

INSERT INTO `Track`(`TrackId`, `Name`, `Composer`, `UnitPrice`)
VALUES(1, 'For Those About To Rock (We Salute You)', 'Angus Young, Malcolm Young, Brian Johnson', 0.99),(2, 'It''s a Long Way to the Top (If You Wanna Rock ''n'' Roll)', NULL, 0.99),(3, 'Rock;Roll -- the B side', 'O''Brien;  Smith', 1.99);

INSERT INTO sys_config
VALUES(4, '主框架页-默认皮肤样式名称', 'sys.index.skinName', 'skin-blue', 'Y', 'admin', sysdate(), '蓝色 skin-blue、绿色 skin-green；紫色 skin-purple');

INSERT INTO dtb_mailtemplate(template_id, subject, header)
VALUES(1, 'ご注文ありがとうございます', 'この度はご注文いただき誠にありがとうございます。
下記ご注文内容にお間違えがないかご確認下さい。

');
