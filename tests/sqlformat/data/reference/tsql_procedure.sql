SET NOCOUNT
    ON
GO

IF EXISTS(SELECT * FROM sysobjects WHERE id = object_id('dbo.Employee Sales by Country') AND sysstat & 0xf = 4)
DROP PROCEDURE "dbo"."Employee Sales by Country"
GO

CREATE PROCEDURE "Employee Sales by Country" @Beginning_Date DateTime, @Ending_Date DateTime AS
SELECT Employees.Country,
    Employees.LastName,
    Employees.FirstName,
    Orders.ShippedDate,
    Orders.OrderID,
    "Order Subtotals".Subtotal AS SaleAmount
FROM Employees
    INNER
    JOIN(Orders INNER JOIN "Order Subtotals" ON Orders.OrderID = "Order Subtotals".OrderID)
    ON Employees.EmployeeID = Orders.EmployeeID
WHERE Orders.ShippedDate BETWEEN @Beginning_Date
    AND @Ending_Date
GO

INSERT [dbo].[Customers]([CustomerID], [CompanyName])
VALUES(N'ALFKI', N'Alfreds Futterkiste'),(N'BERGS', N'Berglunds snabbköp')
