var library = { add: function (a, b) { return a + b; } };
