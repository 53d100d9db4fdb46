before_scenario do |context|
  test.log("before #{context.scenario}") # @begin
end

after_scenario do |context|
  test.log("after with #{context.count} pies") # @end
end

Given('an empty order') do |context| # @step1
  context.count = 0
end

When('{int} pie(s) for {string} is/are ordered') do |context, count, name| # @step2
  context.count += count
  test.log("for #{name}") # @order
end

Then('{int} pies arrive') do |context, count| # @step3
  test.compare(context.count, count, 'pies') # @arrive
end

Then('it costs {float}') do |_context, price| # @step4
  test.compare(price, 4.5) # @costs
end

When('these are ordered') do |context| # @step5
  context.table.each { |row| context.count += row['count'].to_i }
end

When('the note says') do |context| # @step6
  context.note = context.text
end

Then('the note has {int} lines') do |context, count| # @step7
  test.compare(context.note.lines.size, count) # @lines
end

Step('an error is raised') do # @step8
  raise ArgumentError, 'in a step' # @error
end

Step('this is not reached') do # @step9
  test.fail('reached')
end
