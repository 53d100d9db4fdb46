before_scenario do |context|
  test.log("before #{context.scenario}") # @begin
end

after_scenario do |context|
  test.log("after with #{context.count} pies") # @end
end

Given('an empty order') do |context|
  context.count = 0
end

When('{int} pie(s) for {string} is/are ordered') do |context, count, name|
  context.count += count
  test.log("for #{name}") # @order
end

Then('{int} pies arrive') do |context, count|
  test.compare(context.count, count, 'pies') # @arrive
end

Then('it costs {float}') do |_context, price|
  test.compare(price, 4.5) # @costs
end

When('these are ordered') do |context|
  context.table.each { |row| context.count += row['count'].to_i }
end

When('the note says') do |context|
  context.note = context.text
end

Then('the note has {int} lines') do |context, count|
  test.compare(context.note.lines.size, count) # @lines
end

Step('an error is raised') do
  raise ArgumentError, 'in a step' # @error
end

Step('this is not reached') do
  test.fail('reached')
end
