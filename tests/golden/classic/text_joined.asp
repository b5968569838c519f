<% var pieces = []; for (var i = 0; i < 5; i++) pieces.push(i * i); %><%= pieces.join("+") %>
