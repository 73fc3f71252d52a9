-- ----------------------------
-- Table structure for sys_user
-- ----------------------------
DROP TABLE IF EXISTS `sys_user`;

CREATE TABLE `sys_user`(`user_id` bigint(20) NOT NULL AUTO_INCREMENT COMMENT '用户ID', `dept_id` bigint(20) DEFAULT NULL COMMENT '部门ID', `user_name` varchar(30) NOT NULL COMMENT '用户账号', `email` varchar(50) DEFAULT '' COMMENT '用户邮箱', `status` char(1) DEFAULT '0' COMMENT '帐号状态（0正常 1停用）', `create_time` datetime DEFAULT CURRENT_TIMESTAMP, PRIMARY KEY(`user_id`), KEY `idx_dept`(`dept_id`), CONSTRAINT `fk_user_dept` FOREIGN KEY(`dept_id`) REFERENCES `sys_dept`(`dept_id`) ON DELETE CASCADE) ENGINE=InnoDB AUTO_INCREMENT=100 DEFAULT CHARSET=utf8mb4 COMMENT='用户信息表';

ALTER TABLE `sys_user` ADD UNIQUE INDEX `uk_user_name`(`user_name`);
