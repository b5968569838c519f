// Asked before a delete form is sent; the form is not sent when the user says no. The page that the form leads to asks
// once more, and that one with the message's subject: this question saves the way there.
function ConfirmDeleteMessage() {
  return window.confirm("Delete this message? It is kept for a while, and can be brought back until then.");
}
