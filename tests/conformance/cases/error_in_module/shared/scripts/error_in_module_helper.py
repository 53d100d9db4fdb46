def call(function):
    function()  # @module
