<% try { undefinedFunction(); } catch (e) { Response.Write(e.name + " " + (e.number !== undefined) + " " + (e.description.length > 0)); } %>
