[<%= null %>][<%= undefined %>][<%= "" + null %>][<%= true %>][<%= "" + true %>]
